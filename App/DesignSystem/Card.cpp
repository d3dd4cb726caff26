#include "App/DesignSystem/Card.h"

#include "App/DesignSystem/Drawing.h"
#include "App/Wording/Localized.h"

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

    std::string spoken(const std::string& text, CheckLine::State state)
    {
        switch (state) {
        case CheckLine::State::ok:
            return localized("%1: in order", {text});
        case CheckLine::State::failed:
            return localized("%1: not in order", {text});
        case CheckLine::State::pending:
            break;
        }
        return text;
    }

    constexpr double checkIcon = 15, checkGap = 8, activityGap = 5, rowEdge = 8; // points

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
    bool isFirst = true;
    for (int index = 0; index < layout_->count(); ++index) {
        const auto* row = layout_->itemAt(index)->widget();
        if (row && !row->isHidden() && !std::exchange(isFirst, false))
            drawHairline(painter, row->geometry().topLeft(), row->width(), look.scale(), look.tokens());
    }
}

Row::Row(const Theme& theme, const std::string& title, QWidget* control)
    : row_{new QHBoxLayout{this}}
    , height_{new QSpacerItem{0, 0}}
    , title_{new Label{theme, TextStyle::body}}
    , subtitle_{new Label{theme, TextStyle::caption, &Tokens::text2}}
    , control_{control}
    , follows_{theme, *this, [this, &look = theme.look] {
                   const int side = look.units(measure::rowPadding), edge = look.units(rowEdge);
                   row_->setContentsMargins(side, edge, side, edge);
                   row_->setSpacing(look.units(measure::rowGap));
                   height_->changeSize(0, look.units(measure::rowHeight - 2 * rowEdge));
                   row_->invalidate();
               }}
{
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addStretch();
    texts->addWidget(title_);
    texts->addWidget(subtitle_);
    texts->addStretch();
    row_->addLayout(texts, 1);
    if (control)
        row_->addWidget(control, 0, Qt::AlignVCenter);
    row_->addItem(height_);
    subtitle_->hide();
    title_->show(title);
    if (control && control->accessibleName().isEmpty())
        control->setAccessibleName(qtText(title));
}

void Row::showSubtitle(const std::string& text)
{
    subtitle_->show(text);
    subtitle_->setVisible(!text.empty());
    if (control_)
        control_->setAccessibleDescription(qtText(text));
}

Activity::Activity(const Theme& theme)
    : theme_{theme}
    , row_{new QHBoxLayout{this}}
    , text_{new Label{theme, TextStyle::activity}}
    , follows_{theme, *this, [this, &look = theme.look] {
                   const int dot = look.units(measure::dotSize + activityGap);
                   isRightToLeft() ? row_->setContentsMargins(0, 0, dot, 0) : row_->setContentsMargins(dot, 0, 0, 0);
               }}
{
    row_->addWidget(text_);
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
    const double size = theme_.look.scaled(measure::dotSize);
    const double left = isRightToLeft() ? width() - size : 0;
    painter.drawEllipse(QRectF{left, (height() - size) / 2, size, size});
}

CheckLine::CheckLine(const Theme& theme)
    : row_{new QHBoxLayout{this}}
    , icon_{new IconLabel{theme, checkIcon, &Tokens::text3}}
    , text_{new Label{theme, TextStyle::note, &Tokens::text2}}
    , follows_{theme, *this, [this, &look = theme.look] { row_->setSpacing(look.units(checkGap)); }}
{
    row_->setContentsMargins({});
    row_->addWidget(icon_);
    row_->addWidget(text_, 1);
}

void CheckLine::show(const std::string& text, State state)
{
    const auto [icon, ink] = sign(state);
    icon_->show(icon, ink);
    text_->show(text, spoken(text, state));
}

} // namespace vespra
