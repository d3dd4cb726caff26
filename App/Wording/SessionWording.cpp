#include "App/Wording/SessionWording.h"

#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"

namespace vespra {

namespace {

    constexpr std::string_view plain = "Session ended";
    constexpr std::string_view battery = "battery.25percent", check = "checkmark.circle.fill",
                               clock = "clock.badge.exclamationmark";

    /// What is said of an end; "%1" is the battery's level in percent.
    struct EndWords {
        std::string_view shortDescription, notificationTitle, symbol;
    };

    constexpr EndWords words(const EndReason& reason)
    {
        return match(
            reason,
            [](const end::LowBattery&) {
                return EndWords{"Battery at %1%", "Session ended — battery at %1%", battery};
            },
            [](const end::StoppedByUser&) { return EndWords{"Stopped", plain, check}; },
            [](const end::TimeElapsed&) { return EndWords{"Time is up", "Session ended — time is up", check}; },
            [](const end::SystemSleep&) { return EndWords{"Mac went to sleep", plain, check}; },
            [](const end::AppTerminated&) { return EndWords{"App quit", plain, check}; },
            [](const end::ChargerDisconnected&) {
                return EndWords{"Charger unplugged", "Session ended — charger unplugged", "powerplug"};
            },
            [](const end::BatteryTimeLimit&) {
                return EndWords{"Battery time limit reached", "Session ended — battery time limit reached", battery};
            },
            [](const end::ClosedLidTimeLimit&) {
                return EndWords{"4-hour closed-lid limit reached", "Session ended — 4-hour limit reached", clock};
            },
            [](const end::Overheating&) {
                return EndWords{"Mac too hot", "Session ended — Mac too hot", "thermometer.high"};
            },
            [](const end::AgentsFinished&) {
                return EndWords{"Agents finished", "Session ended — agents finished", check};
            },
            [](const end::SafetyCapReached&) {
                return EndWords{"Safety limit reached", "Session ended — safety limit reached", clock};
            });
    }

    std::string withLevel(std::string_view literal, const EndReason& reason)
    {
        if (const auto* low = std::get_if<end::LowBattery>(&reason))
            return localized(literal, {std::to_string(low->level)});
        return localized(literal);
    }

} // namespace

std::string shortDescription(const EndReason& reason) { return withLevel(words(reason).shortDescription, reason); }

std::string notificationTitle(const EndReason& reason) { return withLevel(words(reason).notificationTitle, reason); }

std::string notificationBody(const EndReason& reason)
{
    return std::holds_alternative<end::Overheating>(reason)
        ? localized("Closed-lid mode is off so the Mac can cool down.")
        : localized("Your Mac can go to sleep again.");
}

std::string_view symbol(const EndReason& reason) { return words(reason).symbol; }

std::string message(const StartRefusal& refusal)
{
    return match(
        refusal,
        [](const refusal::BatteryTooLow& low) {
            return localized("Battery at %1%, too low to start.", {std::to_string(low.level)});
        },
        [](const refusal::AlreadyActive&) { return localized("A session is already running."); },
        [](const refusal::ChargerRequired&) { return localized("Plug in the charger to start."); },
        [](const refusal::TooHot&) { return localized("Mac is too hot for closed-lid mode."); });
}

std::string title(SessionMode mode)
{
    switch (mode) {
    case SessionMode::timer:
        return localized("Timer");
    case SessionMode::until:
        return localized("Until");
    case SessionMode::unlimited:
        return localized("Unlimited");
    case SessionMode::agent:
        break;
    }
    return localized("Agent");
}

std::string shortDescription(const ActiveGuardrail& guardrail)
{
    const auto brief = [](Seconds length) { return Format::current().briefDuration(length); };
    return match(
        guardrail,
        [](const guardrail::LowBattery& low) {
            return localized("Stops at %1% battery", {std::to_string(low.threshold)});
        },
        [&](const guardrail::BatteryTimeLimit& time) { return localized("%1 max on battery", {brief(time.limit)}); },
        [&](const guardrail::ClosedLidLimit& time) { return localized("%1 max with lid closed", {brief(time.limit)}); },
        [](const guardrail::ChargerRequired&) { return localized("Charger required"); });
}

} // namespace vespra
