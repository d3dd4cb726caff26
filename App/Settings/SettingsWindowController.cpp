#include "App/Settings/SettingsWindowController.h"

namespace vespra {

SettingsWindowController::SettingsWindowController(const SurfaceContext& context, const Theme& theme)
    : context_{context}
    , theme_{theme}
{
}

void SettingsWindowController::show(std::optional<SettingsTab> tab)
{
    if (tab)
        context_.model.setSettingsTab(*tab);
    if (!window_) {
        window_ = std::make_unique<SettingsWindow>(context_, theme_);
        window_->onClose = [this] {
            // Later: the window is still at it. By then it may have been opened again.
            context_.mainLoop.post(lifetime_.guard([this] {
                if (window_ && !window_->isVisible())
                    window_.reset();
            }));
        };
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace vespra
