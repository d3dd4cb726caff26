#pragma once

// App/Panel/Content: the views of the panel, from top to bottom. Each follows the model and decides nothing.

#include "App/DesignSystem/Theme.h"
#include "App/Launch/AppSurfaces.h"
#include "App/Model/AppModel.h"

namespace vespra {

/// The date for what the panel counts. It is followed while the panel is shown, else only looked at: nothing wakes up
/// for a panel that nobody sees.
class PanelClock {
public:
    /// All outlive it.
    PanelClock(const AppModel& model, const ObservedClock& clock)
        : model_{model}
        , clock_{clock}
    {
    }

    Instant now(Instant anchor, Seconds step = 1s) const
    {
        return isShown_.get() ? clock_.now(anchor, step) : model_.coordinator().now();
    }
    void setShown(bool isShown) { isShown_.set(isShown); }

private:
    const AppModel& model_;
    const ObservedClock& clock_;
    Observed<bool> isShown_;
};

/// What every view of the panel is made with. It outlives them, and so does all that it refers to.
struct PanelContext {
    AppModel& model;
    Theme theme;
    TaskScheduling& tasks;
    const PanelClock& clock;
    /// Takes the panel out of the way of what the system asks.
    std::function<void()> hidePanel;
    /// Gives the focus to the button that starts or stops.
    std::function<void()> takeFocus;

    /// Shows or hides a part of the panel. The focus does not go with it.
    void setShown(QWidget& part, bool isShown) const;
};

/// Has a screen reader say what `part` tells now.
void announce(QWidget& part);

} // namespace vespra
