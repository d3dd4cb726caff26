#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/SessionReport.h"
#include "App/Wording/SessionWording.h"
#include "Core/Scheduling/VirtualTime.h"

#include <gtest/gtest.h>

#include <QString>

namespace vespra {

namespace {

    /// What is said of a Mac, of this machine.
    std::string here(const char* text)
    {
        QString said{text};
        if (!IS_MAC)
            said.replace("a MacBook", "a laptop with a lid").replace(" Mac", " computer");
        if (!IS_MAC && said.startsWith("Mac"))
            said.replace(0, 3, "Computer");
        return said.toStdString();
    }

    AgentSession doing(AgentActivity activity)
    {
        return {.agent = AgentKind::codex, .cwd = "/x/project", .activity = activity};
    }

    TEST(Wording, IsExact)
    {
        qputenv("LC_ALL", "C"); // before the user's format is made
        for (const auto& [said, expected] : std::vector<std::pair<std::string, const char*>>{
                 {shortDescription(end::LowBattery{5}), "Battery at 5%"},
                 {shortDescription(end::StoppedByUser{}), "Stopped"},
                 {shortDescription(end::TimeElapsed{}), "Time is up"},
                 {shortDescription(end::SystemSleep{}), "Mac went to sleep"},
                 {shortDescription(end::AppTerminated{}), "App quit"},
                 {shortDescription(end::ChargerDisconnected{}), "Charger unplugged"},
                 {shortDescription(end::BatteryTimeLimit{}), "Battery time limit reached"},
                 {shortDescription(end::ClosedLidTimeLimit{}), "4-hour closed-lid limit reached"},
                 {shortDescription(end::Overheating{}), "Mac too hot"},
                 {shortDescription(end::AgentsFinished{}), "Agents finished"},
                 {shortDescription(end::SafetyCapReached{}), "Safety limit reached"},
                 {notificationTitle(end::LowBattery{5}), "Session ended — battery at 5%"},
                 {notificationTitle(end::StoppedByUser{}), "Session ended"},
                 {notificationTitle(end::SystemSleep{}), "Session ended"},
                 {notificationTitle(end::AppTerminated{}), "Session ended"},
                 {notificationTitle(end::TimeElapsed{}), "Session ended — time is up"},
                 {notificationTitle(end::ChargerDisconnected{}), "Session ended — charger unplugged"},
                 {notificationTitle(end::BatteryTimeLimit{}), "Session ended — battery time limit reached"},
                 {notificationTitle(end::ClosedLidTimeLimit{}), "Session ended — 4-hour limit reached"},
                 {notificationTitle(end::Overheating{}), "Session ended — Mac too hot"},
                 {notificationTitle(end::AgentsFinished{}), "Session ended — agents finished"},
                 {notificationTitle(end::SafetyCapReached{}), "Session ended — safety limit reached"},
                 {notificationBody(EndReason{end::Overheating{}}), "Closed-lid mode is off so the Mac can cool down."},
                 {notificationBody(EndReason{end::TimeElapsed{}}), "Your Mac can go to sleep again."},
                 {message(refusal::BatteryTooLow{20}), "Battery at 20%, too low to start."},
                 {message(refusal::AlreadyActive{}), "A session is already running."},
                 {message(refusal::ChargerRequired{}), "Plug in the charger to start."},
                 {message(refusal::TooHot{}), "Mac is too hot for closed-lid mode."},
                 {message(closedLid::Unsupported{ClosedLidUnsupportedReason::noBuiltInDisplay}), "Requires a MacBook"},
                 {message(closedLid::Unsupported{ClosedLidUnsupportedReason::unsignedBuild}),
                     "Unavailable in this build"},
                 {message(closedLid::Blocked{blocker::BatteryTooLow{9}}), "Battery too low (9%)"},
                 {message(closedLid::Blocked{blocker::ChargerRequired{}}), "Plug in the charger"},
                 {message(closedLid::Blocked{blocker::TooHot{}}), "Mac too hot"},
                 {message(closedLid::NotConfigured{}), "Not set up"},
                 {message(closedLid::AwaitingApproval{}), "Waiting for your approval"},
                 {message(closedLid::HelperFailed{}), "Component not responding"},
                 {message(closedLid::Off{}), "Stay awake with the lid closed"},
                 {message(closedLid::Ready{}), "Ready at start"},
                 {message(closedLid::Verifying{}), "Checking…"},
                 {message(closedLid::CanCloseLid{}), "You can close the lid"},
                 {title(SessionMode::timer), "Timer"},
                 {title(SessionMode::until), "Until"},
                 {title(SessionMode::unlimited), "Unlimited"},
                 {title(SessionMode::agent), "Agent"},
                 {explanation(AgentEndAction::letSleep), "The Mac goes back to its usual sleep settings."},
                 {explanation(AgentEndAction::sleepNow),
                     "The Mac goes to sleep right away, after a 1-minute countdown you can cancel."},
                 {explanation(AgentEndAction::shutDown),
                     "The Mac shuts down after a 1-minute countdown you can cancel. Unsaved work in other apps will "
                     "be lost."},
                 {notificationBody(AgentEndAction::letSleep), "Your Mac can go to sleep again."},
                 {notificationBody(AgentEndAction::sleepNow), "The Mac will sleep in 1 minute."},
                 {notificationBody(AgentEndAction::shutDown), "The Mac will shut down in 1 minute. Save your work."},
                 {statusLine(doing(AgentActivity::working)), "Codex (project) is working"},
                 {statusLine(doing(AgentActivity::waitingForApproval)), "Codex (project) waits for approval"},
                 {statusLine(doing(AgentActivity::idle)), "Codex (project) is idle"},
                 {shortDescription(guardrail::LowBattery{20}), "Stops at 20% battery"},
                 {shortDescription(guardrail::BatteryTimeLimit{5400s}), "1h 30m max on battery"},
                 {shortDescription(guardrail::BatteryTimeLimit{-1s}), " max on battery"},
                 {shortDescription(guardrail::ClosedLidLimit{4h}), "4h max with lid closed"},
                 {shortDescription(guardrail::ChargerRequired{}), "Charger required"},
                 {std::string{symbol(end::LowBattery{5})}, "battery.25percent"},
                 {std::string{symbol(end::BatteryTimeLimit{})}, "battery.25percent"},
                 {std::string{symbol(end::StoppedByUser{})}, "checkmark.circle.fill"},
                 {std::string{symbol(end::TimeElapsed{})}, "checkmark.circle.fill"},
                 {std::string{symbol(end::SystemSleep{})}, "checkmark.circle.fill"},
                 {std::string{symbol(end::AppTerminated{})}, "checkmark.circle.fill"},
                 {std::string{symbol(end::AgentsFinished{})}, "checkmark.circle.fill"},
                 {std::string{symbol(end::ChargerDisconnected{})}, "powerplug"},
                 {std::string{symbol(end::ClosedLidTimeLimit{})}, "clock.badge.exclamationmark"},
                 {std::string{symbol(end::SafetyCapReached{})}, "clock.badge.exclamationmark"},
                 {std::string{symbol(end::Overheating{})}, "thermometer.high"},
             })
            EXPECT_EQ(said, here(expected));
    }

    TEST(Wording, TellsWhatTheAgentsAreAbout)
    {
        VirtualTime time;
        AgentTracker tracker;
        AgentPolicy policy{.graceDelay = 90s};
        const auto condition = std::make_shared<AgentEndCondition>(tracker, policy, time);
        condition->sessionDidBegin(time.now());
        const auto expectSaid = [&](const std::string& text) {
            const ActiveSession session{.plan = plan::Agent{}, .startedAt = time.now()};
            EXPECT_EQ(liveLine(session, time.now(), condition.get(), tracker), "0:00 awake · " + text);
        };
        const auto report = [&](AgentSignal signal) {
            tracker.record({.agent = AgentKind::codex, .sessionID = "a", .signal = signal, .date = time.now()});
            condition->evaluate(time.now());
        };
        expectSaid("waiting for agents");
        report(AgentSignal::working);
        expectSaid("agents are working · Codex is working");
        report(AgentSignal::finished);
        expectSaid("agents are done, ends in 1:30 · Codex is idle");
        condition->keepAwake();
        expectSaid("kept awake · Codex is idle");
    }

} // namespace

} // namespace vespra
