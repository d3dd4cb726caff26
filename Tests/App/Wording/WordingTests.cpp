#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/SessionReport.h"
#include "App/Wording/SessionWording.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

#include <QString>

namespace vespra {

namespace {

    /// What is said of a Mac, of this machine.
    QString here(QString said)
    {
        if (!IS_MAC)
            said.replace("a MacBook", "a laptop with a lid")
                .replace(" Mac", " computer")
                .replace("\nMac", "\nComputer");
        return said;
    }

    TEST(Wording, IsExact)
    {
        qputenv("LC_ALL", "C"); // before the user's format is made
        std::string said;
        const auto say = [&](const auto&... lines) { ((said += std::string{lines} + "\n"), ...); };
        std::vector<EndReason> reasons{end::LowBattery{5}};
        reasons.insert(reasons.end(), payloadFreeEndReasons.begin(), payloadFreeEndReasons.end());
        for (const auto& reason : reasons)
            say(std::string{caseName(reason)} + ", " + std::string{symbol(reason)}
                    + (traits(reason).notifies ? ", told" : "") + (traits(reason).isGuardrail ? ", a guardrail" : ""),
                shortDescription(reason),
                notificationTitle(reason),
                notificationBody(reason),
                "");
        using namespace blocker;
        for (const StartRefusal& each :
            {StartRefusal{BatteryTooLow{20}}, {refusal::AlreadyActive{}}, {ChargerRequired{}}, {TooHot{}}})
            say(message(each));
        using namespace closedLid;
        using Reason = ClosedLidUnsupportedReason;
        for (const ClosedLidStatus& each : std::vector<ClosedLidStatus>{Unsupported{Reason::noBuiltInDisplay},
                 Unsupported{Reason::unsignedBuild},
                 Blocked{BatteryTooLow{9}},
                 Blocked{ChargerRequired{}},
                 Blocked{TooHot{}},
                 NotConfigured{},
                 AwaitingApproval{},
                 HelperFailed{},
                 Off{},
                 Ready{},
                 Verifying{},
                 CanCloseLid{}})
            say(message(each));
        for (const auto& [mode, name] : rawValues<SessionMode>)
            say(title(mode));
        for (const auto& [action, name] : rawValues<AgentEndAction>)
            say(explanation(action), notificationBody(action));
        for (const auto& [activity, name] : rawValues<AgentActivity>)
            say(statusLine({.agent = AgentKind::codex, .cwd = "/x/project", .activity = activity}));
        for (const ActiveGuardrail& each : std::vector<ActiveGuardrail>{guardrail::LowBattery{20},
                 guardrail::BatteryTimeLimit{5400s},
                 guardrail::BatteryTimeLimit{-1s},
                 guardrail::ClosedLidLimit{4h},
                 guardrail::ChargerRequired{}})
            say(shortDescription(each));
        const auto expected = textOf(std::string{SOURCES} + "/Tests/App/Wording/Wording.txt").value_or("");
        EXPECT_EQ(said, here(QString::fromStdString(expected)).toStdString());
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
