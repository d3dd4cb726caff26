#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Card.h"
#include "App/Model/ClosedLidFacts.h"
#include "App/Panel/Content/PanelContext.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"

namespace vespra {

/// Closed-lid mode: its switch and what it would do now. It opens into a checklist while something is missing.
class ClosedLidView final : public QWidget {
public:
    explicit ClosedLidView(const PanelContext& context);

private:
    void layOut();
    void show(const panelFacts::ClosedLidRow& facts);
    void openSoon();
    void showChecks(const std::vector<panelFacts::CheckItem>& checks);
    void act();

    const PanelContext& context_;
    std::optional<panelFacts::ComponentAction> offered_;
    Switch* switch_;
    Button* action_;
    Row* row_;
    QWidget* card_;
    QHBoxLayout* opened_;
    QVBoxLayout* lines_;
    std::array<CheckLine*, 4> checks_;
    Button* turnOff_;
    std::unique_ptr<ScheduledTask> opening_;
    FollowsLook follows_;
    ObservationLoop loop_;
    Lifetime lifetime_;
};

} // namespace vespra
