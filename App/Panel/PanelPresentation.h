#pragma once

#include "App/System/AppearanceMonitoring.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <functional>
#include <memory>

namespace vespra {

/// Whether the content of the panel is to be seen. What shows it follows `isShown`, and moves by `change` on the way.
/// Main thread only.
class PanelPresentation {
public:
    /// Both outlive it.
    PanelPresentation(TaskScheduling& tasks, const AppearanceMonitoring& appearance);

    bool isShown() const { return isShown_.get(); }
    void show();
    /// `completion` runs once the content has gone, at once if nothing moves; never if it is shown again before.
    void hide(std::function<void()> completion);

    /// How long the content takes to come or to go; 0 with reduced motion.
    Seconds change(bool isShown) const;

private:
    TaskScheduling& tasks_;
    const AppearanceMonitoring& appearance_;
    Observed<bool> isShown_;
    std::unique_ptr<ScheduledTask> completion_;
};

} // namespace vespra
