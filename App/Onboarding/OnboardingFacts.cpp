#include "App/Onboarding/OnboardingFacts.h"

#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    using Status = OnboardingFacts::Status;

    constexpr std::string_view tick = "checkmark.circle.fill";

    OnboardingFacts loginFacts(AppModel& model)
    {
        OnboardingFacts facts{
            .symbol = "power",
            .title = localized("Open at login"),
            .message
            = localized("%1 opens quietly in the menu bar each time you start your Mac. No session starts on its own.",
                {Brand::appName()}),
            .status = {},
            .actions = {OnboardingAction::openAtLogin, OnboardingAction::notNow},
        };
        if (model.loginItem().isEnabled()) {
            facts.status = Status{localized("Opens at login"), tick, true};
            facts.actions = {OnboardingAction::proceed};
        }
        return facts;
    }

    std::string closedLidMessage(const HelperStatus& component)
    {
        if (const auto* const unsupported = std::get_if<helper::Unsupported>(&component))
            switch (unsupported->reason) {
            case ClosedLidUnsupportedReason::noBuiltInDisplay:
                return localized("This Mac has no built-in display, so closed-lid mode doesn't apply.");
            case ClosedLidUnsupportedReason::unsignedBuild:
                return localized("Closed-lid mode needs a signed copy of the app.");
            }
        return localized("To stay awake with the lid closed, %1 installs a small system component. macOS asks you to "
                         "allow it once in System Settings: it changes your sleep setting during a session and puts it "
                         "back on its own afterwards.",
            {Brand::appName()});
    }

    std::optional<Status> closedLidStatus(const HelperStatus& component)
    {
        if (std::holds_alternative<helper::AwaitingApproval>(component))
            return Status{localized("Waiting for your approval in System Settings."), "hourglass", false};
        if (isReady(component))
            return Status{localized("Component installed"), tick, true};
        return {};
    }

    std::vector<OnboardingAction> closedLidActions(const HelperStatus& component)
    {
        if (std::holds_alternative<helper::NotInstalled>(component))
            return {OnboardingAction::setUp, OnboardingAction::later};
        if (std::holds_alternative<helper::AwaitingApproval>(component))
            return {OnboardingAction::openSystemSettings, OnboardingAction::done};
        return {OnboardingAction::done};
    }

} // namespace

std::string title(OnboardingAction action)
{
    switch (action) {
    case OnboardingAction::openAtLogin:
        return localized("Open at Login");
    case OnboardingAction::notNow:
        return localized("Not Now");
    case OnboardingAction::proceed:
        return localized("Continue");
    case OnboardingAction::setUp:
        return localized("Set Up…");
    case OnboardingAction::openSystemSettings:
        return localized("Open System Settings");
    case OnboardingAction::later:
        return localized("Later");
    case OnboardingAction::done:
        break;
    }
    return localized("Done");
}

OnboardingFacts onboardingFacts(AppModel& model, OnboardingStep step)
{
    if (step == OnboardingStep::launchAtLogin)
        return loginFacts(model);
    const auto& component = model.coordinator().conditions().helper;
    return {
        .symbol = "laptopcomputer",
        .title = localized("Closed-lid mode (optional)"),
        .message = closedLidMessage(component),
        .status = closedLidStatus(component),
        .actions = closedLidActions(component),
    };
}

} // namespace vespra
