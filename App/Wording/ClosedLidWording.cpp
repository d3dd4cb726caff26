#include "App/Wording/ClosedLidWording.h"

#include "App/Wording/Localized.h"

namespace vespra {

namespace {

    std::string message(ClosedLidUnsupportedReason reason)
    {
        switch (reason) {
        case ClosedLidUnsupportedReason::noBuiltInDisplay:
            return localized("Requires a MacBook");
        case ClosedLidUnsupportedReason::unsignedBuild:
            break;
        }
        return localized("Unavailable in this build");
    }

    std::string message(const ClosedLidBlocker& blocker)
    {
        return match(
            blocker,
            [](const blocker::BatteryTooLow& low) {
                return localized("Battery too low (%1%)", {std::to_string(low.level)});
            },
            [](const blocker::ChargerRequired&) { return localized("Plug in the charger"); },
            [](const blocker::TooHot&) { return localized("Mac too hot"); });
    }

} // namespace

std::string message(const ClosedLidStatus& status)
{
    return match(
        status,
        [](const closedLid::Unsupported& unsupported) { return message(unsupported.reason); },
        [](const closedLid::Blocked& blocked) { return message(blocked.blocker); },
        [](const closedLid::NotConfigured&) { return localized("Not set up"); },
        [](const closedLid::AwaitingApproval&) { return localized("Waiting for your approval"); },
        [](const closedLid::HelperFailed&) { return localized("Component not responding"); },
        [](const closedLid::Off&) { return localized("Stay awake with the lid closed"); },
        [](const closedLid::Ready&) { return localized("Ready at start"); },
        [](const closedLid::Verifying&) { return localized("Checking…"); },
        [](const closedLid::CanCloseLid&) { return localized("You can close the lid"); });
}

} // namespace vespra
