#include "App/DesignSystem/Note.h"

#include <QPainter>

namespace vespra {

namespace {

    struct Inks {
        Ink icon, ground;
    };

    Inks inks(NoteKind kind)
    {
        switch (kind) {
        case NoteKind::ok:
            return {&Tokens::ok, &Tokens::okSoft};
        case NoteKind::warn:
            return {&Tokens::warn, &Tokens::warnSoft};
        case NoteKind::bad:
            return {&Tokens::bad, &Tokens::badSoft};
        case NoteKind::info:
            break;
        }
        return {&Tokens::info, &Tokens::infoSoft};
    }

    constexpr double sidePadding = 11, edgePadding = 9, gap = 8;

} // namespace

Note::Note(const Theme& theme, NoteKind kind, QWidget* control)
    : theme_{theme}
    , kind_{kind}
    , row_{new QHBoxLayout{this}}
    , icon_{new IconLabel{theme, measure::iconSize, inks(kind).icon}}
    , title_{new Label{theme, TextStyle::note}}
    , text_{new Label{theme, TextStyle::caption, &Tokens::text2}}
    , follows_{theme, *this, [this, &look = theme.look] {
                   const int side = look.units(sidePadding), edge = look.units(edgePadding);
                   row_->setContentsMargins(side, edge, side, edge);
                   row_->setSpacing(look.units(gap));
               }}
{
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(text_);
    row_->addWidget(icon_, 0, Qt::AlignTop);
    row_->addLayout(texts, 1);
    if (control)
        row_->addWidget(control, 0, Qt::AlignTop);
}

void Note::show(std::string_view icon, const std::string& title, const std::string& text)
{
    icon_->show(icon, inks(kind_).icon);
    title_->setTextStyle(text.empty() ? TextStyle::note : TextStyle::section);
    title_->show(title);
    text_->show(text);
    text_->setVisible(!text.empty());
}

void Note::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    const auto& tokens = look.tokens();
    const auto [icon, ground] = inks(kind_);
    const double radius = look.scaled(measure::noteRadius);
    painter.setPen(tokens.control.alpha() > 0 ? QPen{tokens.*icon, tokens.hairline} : QPen{Qt::NoPen});
    painter.setBrush(tokens.*ground);
    const double half = tokens.control.alpha() > 0 ? tokens.hairline / 2 : 0;
    painter.drawRoundedRect(QRectF{rect()}.adjusted(half, half, -half, -half), radius, radius);
}

} // namespace vespra
