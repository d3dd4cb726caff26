#include "App/Onboarding/OnboardingWindowController.h"

#include "App/Model/PreferencesStore.h"

namespace vespra {

OnboardingWindowController::OnboardingWindowController(const SurfaceContext& context, const Theme& theme)
    : context_{context}
    , theme_{theme}
{
}

void OnboardingWindowController::show()
{
    if (!window_) {
        window_ = std::make_unique<OnboardingWindow>(context_, theme_);
        window_->onFinish = [this] { finish(); };
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void OnboardingWindowController::finish()
{
    PreferencesStore::setDidFinishOnboarding(true, context_.model.store());
    // Later: the window is still closing.
    context_.mainLoop.post(lifetime_.guard([this] {
        if (window_ && !window_->isVisible())
            window_.reset();
    }));
}

} // namespace vespra
