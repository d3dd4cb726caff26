#include "App/DesignSystem/Note.h"

#include "App/DesignSystem/Icon.h"

#include <QHBoxLayout>
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
    , title_{new Label{theme, TextStyle::note}}
    , text_{new Label{theme, TextStyle::caption, &Tokens::text2}}
    , follows_{theme, *this}
{
    const auto& look = theme.look;
    auto* row = new QHBoxLayout{this};
    const int side = look.units(sidePadding), edge = look.units(edgePadding);
    row->setContentsMargins(side + look.units(measure::iconSize + gap), edge, side, edge);
    row->setSpacing(look.units(gap));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(text_);
    row->addLayout(texts, 1);
    if (control)
        row->addWidget(control, 0, Qt::AlignTop);
}

void Note::show(std::string_view icon, const std::string& title, const std::string& text)
{
    icon_ = icon;
    title_->setTextStyle(text.empty() ? TextStyle::note : TextStyle::section);
    title_->show(title);
    text_->show(text);
    text_->setVisible(!text.empty());
    update();
}

void Note::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& look = theme_.look;
    const auto [icon, ground] = inks(kind_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.tokens().*ground);
    painter.drawRoundedRect(rect(), look.scaled(measure::noteRadius), look.scaled(measure::noteRadius));
    const double size = look.scaled(measure::iconSize);
    drawIcon(painter, icon_, {look.scaled(sidePadding), look.scaled(edgePadding), size, size}, look.tokens().*icon);
}

} // namespace vespra
