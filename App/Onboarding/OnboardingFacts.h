#pragma once

// App/Onboarding: the first launch: the two choices that only the user can make.

#include "App/Model/AppModel.h"

#include <vector>

namespace vespra {

/// The steps, in order.
enum class OnboardingStep { launchAtLogin, closedLid };
inline constexpr int onboardingStepCount = 2;

/// What a button does.
enum class OnboardingAction { openAtLogin, notNow, proceed, setUp, openSystemSettings, later, done };
std::string title(OnboardingAction action);

/// What a step shows.
struct OnboardingFacts {
    struct Status {
        std::string text;
        std::string_view symbol;
        bool isFine; // else it waits for the user
        bool operator==(const Status&) const = default;
    };

    std::string_view symbol;
    std::string title;
    std::string message;
    std::optional<Status> status;
    /// One or two, the primary one first.
    std::vector<OnboardingAction> actions;
};
/// As things are now. Followed by an observation loop that asks. Main thread only.
OnboardingFacts onboardingFacts(AppModel& model, OnboardingStep step);

} // namespace vespra
