#include "App/DesignSystem/Card.h"

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Icon.h"

#include <QPainter>

#include <utility>

namespace vespra {

namespace {

    std::pair<std::string_view, Ink> sign(CheckLine::State state)
    {
        switch (state) {
        case CheckLine::State::ok:
            return {"checkmark.circle.fill", &Tokens::ok};
        case CheckLine::State::failed:
            return {"xmark.circle", &Tokens::bad};
        case CheckLine::State::pending:
            break;
        }
        return {"circle.dotted", &Tokens::text3};
    }

    constexpr double checkIcon = 15, checkGap = 8, activityGap = 5;

} // namespace

Card::Card(const Theme& theme)
    : theme_{theme}
    , layout_{new QVBoxLayout{this}}
    , follows_{theme, *this}
{
    layout_->setContentsMargins({});
    layout_->setSpacing(0);
}

void Card::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    drawCard(painter, rect(), look.scale(), look.tokens());
    painter.setPen(QPen{look.tokens().line, measure::hairline * look.scale()});
    bool isFirst = true;
    for (int index = 0; index < layout_->count(); ++index) {
        const auto* row = layout_->itemAt(index)->widget();
        if (!row || row->isHidden() || std::exchange(isFirst, false))
            continue;
        const double top = row->geometry().top();
        painter.drawLine(QPointF{0, top}, QPointF{static_cast<double>(width()), top});
    }
}

Row::Row(const Theme& theme, const std::string& title, QWidget* control)
    : subtitle_{new Label{theme, TextStyle::caption, &Tokens::text2}}
{
    const auto& look = theme.look;
    auto* row = new QHBoxLayout{this};
    const int padding = look.units(measure::rowPadding), edge = look.units(8);
    row->setContentsMargins(padding, edge, padding, edge);
    row->setSpacing(look.units(measure::rowGap));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addStretch();
    added(*texts, new Label{theme, TextStyle::body}).show(title);
    texts->addWidget(subtitle_);
    texts->addStretch();
    row->addLayout(texts, 1);
    if (control)
        row->addWidget(control, 0, Qt::AlignVCenter);
    setMinimumHeight(look.units(measure::rowHeight));
    subtitle_->hide();
}

void Row::showSubtitle(const std::string& text)
{
    subtitle_->show(text);
    subtitle_->setVisible(!text.empty());
}

Activity::Activity(const Theme& theme)
    : theme_{theme}
    , text_{new Label{theme, TextStyle::caption}}
    , follows_{theme, *this}
{
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(theme.look.units(measure::dotSize + activityGap), 0, 0, 0);
    row->addWidget(text_);
    text_->setWordWrap(false);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void Activity::show(const std::string& text, Ink ink)
{
    ink_ = ink;
    text_->show(text);
    text_->setInk(ink);
    update();
}

void Activity::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.look.tokens().*ink_);
    const double radius = theme_.look.scaled(measure::dotSize) / 2;
    painter.drawEllipse(QPointF{radius, height() / 2.0}, radius, radius);
}

CheckLine::CheckLine(const Theme& theme)
    : theme_{theme}
    , text_{new Label{theme, TextStyle::note, &Tokens::text2}}
    , follows_{theme, *this}
{
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins(theme.look.units(checkIcon + checkGap), 0, 0, 0);
    row->addWidget(text_);
}

void CheckLine::show(const std::string& text, State state)
{
    state_ = state;
    text_->show(text);
    update();
}

void CheckLine::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto [icon, ink] = sign(state_);
    const double size = theme_.look.scaled(checkIcon);
    drawIcon(painter, icon, {0, (height() - size) / 2, size, size}, theme_.look.tokens().*ink);
}

} // namespace vespra
