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
    void showSetting(const AppModel& model);

    const PanelContext& context_;
    SegmentedControl* modes_;
    Card* setting_;
    Label* label_;
    Stepper* stepper_;
    Label* unlimited_;
    ObservationLoop loop_;
};

} // namespace vespra
