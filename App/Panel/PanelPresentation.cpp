#include "App/Panel/PanelPresentation.h"

#include "App/DesignSystem/Tokens.h"

namespace vespra {

PanelPresentation::PanelPresentation(TaskScheduling& tasks, const AppearanceMonitoring& appearance)
    : tasks_{tasks}
    , appearance_{appearance}
{
}

void PanelPresentation::show()
{
    completion_.reset();
    isShown_.set(true);
}

void PanelPresentation::hide(std::function<void()> completion)
{
    isShown_.set(false);
    const auto wait = change(false);
    if (wait > 0s)
        completion_ = tasks_.schedule(wait, std::move(completion));
    else
        completion();
}

Seconds PanelPresentation::change(bool isShown) const
{
    if (appearance_.current().reducesMotion)
        return 0s;
    return std::chrono::milliseconds{isShown ? motion::appear : motion::disappear};
}

} // namespace vespra
