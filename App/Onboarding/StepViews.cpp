#include "App/Onboarding/StepViews.h"

#include "App/DesignSystem/Icon.h"
#include "App/Wording/Localized.h"

#include <QHBoxLayout>
#include <QPainter>

namespace vespra {

namespace {

    constexpr double plateSize = 64, plateRadius = 18, symbolSize = 30;
    constexpr double statusIcon = 14, statusGap = 5;
    constexpr double dotDistance = 13;

} // namespace

SymbolPlate::SymbolPlate(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolPlate::show(std::string_view symbol)
{
    symbol_ = symbol;
    update();
}

QSize SymbolPlate::sizeHint() const { return QSize{1, 1} * theme_.look.units(plateSize); }

void SymbolPlate::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.tokens().accentSoft);
    painter.drawRoundedRect(rect(), look.scaled(plateRadius), look.scaled(plateRadius));
    QRectF place{0, 0, look.scaled(symbolSize), look.scaled(symbolSize)};
    place.moveCenter(QRectF{rect()}.center());
    drawIcon(painter, symbol_, place, look.tokens().accent);
}

StatusLine::StatusLine(const Theme& theme)
    : icon_{new IconLabel{theme, statusIcon, &Tokens::ok}}
    , text_{new Label{theme, TextStyle::note}}
{
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins({});
    row->setSpacing(theme.look.units(statusGap));
    row->addWidget(icon_);
    row->addWidget(text_);
    text_->setWordWrap(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StatusLine::show(const OnboardingFacts::Status& status)
{
    const Ink ink = status.isFine ? &Tokens::ok : &Tokens::info;
    icon_->show(status.symbol, ink);
    text_->show(status.text);
    text_->setInk(ink);
}

StepDots::StepDots(const Theme& theme, int count)
    : theme_{theme}
    , count_{count}
    , follows_{theme, *this}
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StepDots::show(int current)
{
    current_ = current;
    setAccessibleName(qtText(localized("Step %1 of %2", {std::to_string(current + 1), std::to_string(count_)})));
    update();
}

QSize StepDots::sizeHint() const
{
    const auto& look = theme_.look;
    return {look.units(measure::dotSize + (count_ - 1) * dotDistance), look.units(measure::dotSize)};
}

void StepDots::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const auto& look = theme_.look;
    const double size = look.scaled(measure::dotSize);
    for (int index = 0; index < count_; ++index) {
        painter.setBrush(index == current_ ? look.tokens().ring : look.tokens().off);
        const QRectF dot{index * look.scaled(dotDistance), 0, size, size};
        const bool isMirrored = layoutDirection() == Qt::RightToLeft;
        painter.drawEllipse(isMirrored ? dot.translated(width() - size - 2 * dot.left(), 0) : dot);
    }
}

} // namespace vespra
