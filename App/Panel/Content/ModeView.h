#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Card.h"
#include "App/DesignSystem/Stepper.h"
#include "App/Panel/Content/PanelContext.h"

namespace vespra {

/// How the next session is to end: its mode, and how long it lasts. There while no session runs.
class ModeView final : public QWidget {
public:
    explicit ModeView(const PanelContext& context);

private:
    void layOut();
    void showSetting(const AppModel& model);

    const PanelContext& context_;
    QVBoxLayout* column_;
    SegmentedControl* modes_;
    Card* setting_;
    QHBoxLayout* row_;
    Label* label_;
    Stepper* stepper_;
    Label* unlimited_;
    FollowsLook follows_;
    ObservationLoop loop_;
};

} // namespace vespra
