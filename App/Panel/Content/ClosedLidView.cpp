#include "App/Panel/Content/ClosedLidView.h"

#include "App/Model/ComponentFacts.h"
#include "App/Wording/Localized.h"

namespace vespra {

namespace {

    CheckLine* checkLine(const Theme& theme) { return new CheckLine{theme}; }

    /// In one place, one of them at a time.
    QWidget* together(QWidget* first, QWidget* second)
    {
        auto* place = new QWidget;
        auto* row = new QHBoxLayout{place};
        row->setContentsMargins({});
        row->addWidget(first);
        row->addWidget(second);
        return place;
    }

} // namespace

ClosedLidView::ClosedLidView(const PanelContext& context)
    : context_{context}
    , switch_{new Switch{context.theme}}
    , action_{new Button{context.theme, ButtonKind::plain, ButtonSize::small}}
    , row_{new Row{context.theme, localized("Closed-lid mode"), together(switch_, action_)}}
    , card_{new QWidget}
    , opened_{new QHBoxLayout{card_}}
    , lines_{new QVBoxLayout}
    , checks_{checkLine(context.theme), checkLine(context.theme), checkLine(context.theme), checkLine(context.theme)}
    , turnOff_{new Button{context.theme, ButtonKind::quiet, ButtonSize::small}}
    , follows_{context.theme, *this, [this] { layOut(); }}
    , loop_{context.theme.mainLoop, [this] { show(panelFacts::closedLidRow(context_.model)); }}
{
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(row_);
    column->addWidget(card_);
    opened_->addLayout(lines_, 1);
    opened_->addWidget(turnOff_, 0, Qt::AlignBottom);
    for (auto* line : checks_)
        lines_->addWidget(line);

    const auto title = localized("Closed-lid mode");
    switch_->setAccessibleName(qtText(title));
    switch_->onSwitch = [&model = context.model](bool isOn) { model.setClosedLid(isOn); };
    turnOff_->show(localized("Turn Off"));
    connect(turnOff_, &QPushButton::clicked, this, [this] { context_.model.setClosedLid(false); });
    connect(action_, &QPushButton::clicked, this, [this] { act(); });
}

void ClosedLidView::layOut()
{
    constexpr double lineGap = 5, above = 2, below = 11; // points
    const auto& look = context_.theme.look;
    const int side = look.units(measure::rowPadding);
    opened_->setContentsMargins(side, look.units(above), side, look.units(below));
    opened_->setSpacing(look.units(measure::rowGap));
    lines_->setSpacing(look.units(lineGap));
}

void ClosedLidView::show(const panelFacts::ClosedLidRow& facts)
{
    offered_ = facts.action;
    row_->showSubtitle(facts.status);
    switch_->show(facts.isOn);
    switch_->setEnabled(facts.canSwitch);
    switch_->setAccessibleDescription(qtText(facts.status));
    if (facts.action)
        action_->show(title(*facts.action));
    action_->setEnabled(facts.canAct);
    context_.setShown(*action_, facts.action.has_value());
    context_.setShown(*switch_, !facts.action);
    context_.setShown(*turnOff_, facts.action && facts.isOn);
    showChecks(facts.checks);
}

void ClosedLidView::showChecks(const std::vector<panelFacts::CheckItem>& checks)
{
    for (std::size_t index = 0; index < checks.size(); ++index)
        checks_.at(index)->show(checks[index].text, checks[index].state);
    // What the user asked for, or is asked for, shows at once.
    if (!checks.empty() && !offered_ && isVisible())
        return openSoon();
    opening_.reset();
    context_.setShown(*card_, !checks.empty());
}

/// A check that is over in a moment is not worth a panel that opens and closes.
void ClosedLidView::openSoon()
{
    constexpr Seconds moment{0.4};
    if (card_->isHidden() && !opening_)
        opening_ = context_.tasks.schedule(moment, lifetime_.guard([this] { context_.setShown(*card_, true); }));
}

void ClosedLidView::act()
{
    if (!offered_)
        return;
    // What the system asks the user must not lie below the panel.
    if (*offered_ != panelFacts::ComponentAction::retry)
        notify(context_.hidePanel);
    componentFacts::perform(context_.model, *offered_);
}

} // namespace vespra
