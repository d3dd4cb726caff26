#include "App/Settings/RowView.h"

namespace vespra {

namespace {

    constexpr double rowSide = 14, rowEdge = 10, lowestRow = 44;

} // namespace

RowView::RowView(const Theme& theme, const std::string& title, QWidget* control)
    : theme_{theme}
    , control_{control}
    , layout_{new QHBoxLayout{this}}
    , texts_{new QVBoxLayout}
    , title_{new Label{theme, TextStyle::body}}
    , subtitle_{new Label{theme, TextStyle::caption, &Tokens::text2}}
{
    const auto& look = theme.look;
    const int side = look.units(rowSide), edge = look.units(rowEdge);
    layout_->setContentsMargins(side, edge, side, edge);
    layout_->setSpacing(look.units(measure::rowGap));
    layout_->addLayout(texts_, 1);
    texts_->setSpacing(0);
    texts_->addStretch();
    texts_->addWidget(title_);
    texts_->addWidget(subtitle_);
    texts_->addStretch();
    if (control) {
        layout_->addWidget(control, 0, Qt::AlignVCenter);
        if (control->accessibleName().isEmpty())
            control->setAccessibleName(qtText(title));
        // What tells its value as its name, as a menu does, is named by its label.
        title_->setBuddy(control);
    }
    title_->show(title);
    title_->setVisible(!title.empty());
    subtitle_->hide();
    setMinimumHeight(look.units(lowestRow));
}

void RowView::showSubtitle(const std::string& text)
{
    subtitle_->show(text);
    subtitle_->setVisible(!text.empty());
    if (control_)
        control_->setAccessibleDescription(qtText(text));
}

void RowView::setLeading(QWidget* leading) { layout_->insertWidget(0, leading, 0, Qt::AlignVCenter); }

void RowView::addBelow(QWidget* line) { texts_->insertWidget(texts_->indexOf(subtitle_), line, 0, Qt::AlignLeft); }

void RowView::addAtEnd(QWidget* line) { texts_->insertWidget(texts_->indexOf(subtitle_) + 1, line); }

} // namespace vespra
