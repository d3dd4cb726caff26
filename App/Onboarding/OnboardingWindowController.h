#pragma once

#include "App/Onboarding/OnboardingWindow.h"
#include "Core/Lifetime.h"

#include <memory>

namespace vespra {

/// The onboarding window, which is gone once it is closed. However that comes about, it does not return by itself. Main
/// thread only.
class OnboardingWindowController {
public:
    OnboardingWindowController(const SurfaceContext& context, const Theme& theme);

    void show();

    /// Null while it is closed.
    QWidget* window() const { return window_.get(); }

private:
    void finish();

    const SurfaceContext context_;
    const Theme theme_;
    std::unique_ptr<OnboardingWindow> window_;
    Lifetime lifetime_;
};

} // namespace vespra
