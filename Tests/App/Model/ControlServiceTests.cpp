#include "App/Model/ControlService.h"

#include "App/Model/PreferencesStore.h"
#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::HasSubstr;

    class ControlServiceTest : public LaunchedApplication {
    protected:
        void SetUp() override
        {
            launch();
            service.emplace(model());
        }
        /// The reply as a line; the error of a bad request included.
        std::string ask(const std::string& line)
        {
            const auto request = controlProtocol::request(line);
            const auto reply
                = request ? service->reply(*request) : ControlService::error("badRequest", request.error());
            laptop.settle();
            return reply.dump();
        }
        std::string ask(ControlVerb verb) { return ask(controlProtocol::line({.verb = verb})); }

        std::optional<ControlService> service;
    };

    constexpr auto doneIdle = R"({"done":{"isActive":false}})";
    constexpr auto doneActive = R"({"done":{"isActive":true}})";

} // namespace

TEST_F(ControlServiceTest, VerbsAreIdempotent)
{
    EXPECT_EQ(ask(ControlVerb::stop), doneIdle);
    EXPECT_EQ(ask(ControlVerb::cancel), doneIdle);
    EXPECT_EQ(ask(R"({"request":"display","on":true})"), doneIdle);
    EXPECT_EQ(ask(R"({"request":"display","on":true})"), doneIdle);
    EXPECT_TRUE(model().preferences().options.keepsDisplayAwake);
    EXPECT_EQ(ask(R"({"request":"closedLid","on":false})"), doneIdle);
    EXPECT_THAT(ask(R"({"request":"start","mode":"unlimited"})"), HasSubstr("Awake until you stop it."));
    EXPECT_EQ(ask(R"({"request":"display","on":true})"), doneActive);
}

TEST_F(ControlServiceTest, RefusalsGiveTheirText)
{
    const auto refusal
        = [](const std::string& text) { return R"({"error":{"kind":"refused","message":")" + text + R"("}})"; };
    EXPECT_EQ(ask(ControlVerb::extend), refusal("There is no session that can be extended."));
    EXPECT_EQ(ask(ControlVerb::keepAwake), refusal("There is no agent session."));
    EXPECT_EQ(ask(R"({"request":"start","mode":"agent"})"), refusal("No agent is connected."));
    laptop.set({{"charger", "off"}});
    EXPECT_EQ(ask(ControlVerb::start), refusal("Plug in the charger to start."));
    EXPECT_EQ(ask(ControlVerb::toggle), refusal("Plug in the charger to start."));
    laptop.set({{"charger", "on"}, {"helper", "ready"}});
    ask(ControlVerb::start);
    EXPECT_EQ(ask(ControlVerb::start), refusal("A session is already running."));
    EXPECT_EQ(ask(ControlVerb::run), refusal("A session is already running."));
    laptop.set({{"thermal", "serious"}});
    EXPECT_THAT(ask(R"({"request":"closedLid","on":true})"), HasSubstr("too hot for closed-lid mode."));
    EXPECT_FALSE(model().preferences().options.closedLid);
}

TEST_F(ControlServiceTest, StartsEveryPlanForThisTimeOnly)
{
    struct Start {
        const char* request;
        SessionMode mode;
        std::optional<Seconds> length;
    };
    connectClaude();
    const auto before = model().preferences();
    for (const auto& [request, mode, length] : {
             Start{R"({"request":"start"})", SessionMode::timer, 1h},
             Start{R"({"request":"start","mode":"timer","timerDuration":"1m"})", SessionMode::timer, 1min},
             Start{R"({"request":"start","mode":"unlimited"})", SessionMode::unlimited, {}},
             Start{R"({"request":"start","mode":"agent"})", SessionMode::agent, 12h},
         }) {
        SCOPED_TRACE(request);
        ask(request);
        ASSERT_TRUE(isActive());
        const auto* session = coordinator().state().activeSession();
        EXPECT_EQ(session->mode(), mode);
        EXPECT_EQ(session->remaining(laptop.time.now()), length);
        ask(ControlVerb::stop);
    }
    ask(R"({"request":"start","mode":"until","untilTime":"06:05","keepsDisplayAwake":true})");
    EXPECT_EQ(coordinator().state().activeSession()->plan, SessionPlan{(plan::Until{{6, 5}})});
    EXPECT_EQ(laptop.held(), "activity PreventUserIdleSystemSleep PreventUserIdleDisplaySleep");
    EXPECT_EQ(model().preferences(), before);
}

TEST_F(ControlServiceTest, KeepAwakeOutlastsTheAgents)
{
    connectClaude();
    ask(R"({"request":"start","mode":"agent"})");
    agent(AgentSignal::working);
    EXPECT_EQ(ask(ControlVerb::keepAwake), doneActive);
    agent(AgentSignal::finished);
    laptop.advance(10min);
    EXPECT_TRUE(isActive());
}

TEST_F(ControlServiceTest, KnowsAnAgentThatWasConnectedElsewhere)
{
    std::filesystem::create_directories(home / ".claude");
    ASSERT_TRUE(model().agentIntegration().hookFile(AgentKind::claudeCode).connect(laptop.time.now()));
    EXPECT_THAT(ask(R"({"request":"start","mode":"agent"})"), HasSubstr("Awake until your agents have finished"));
}

TEST_F(ControlServiceTest, SettingsCountAtOnceAndAreKept)
{
    ask(R"({"request":"start","mode":"unlimited"})");
    laptop.set({{"battery", "40"}});
    EXPECT_EQ(ask(R"({"request":"set","key":"energy.requiresACPower","value":"off"})"), doneActive);
    laptop.set({{"charger", "off"}});
    EXPECT_TRUE(isActive());
    EXPECT_EQ(ask(R"({"request":"set","key":"energy.lowBatteryThreshold","value":"40"})"), doneIdle);
    EXPECT_EQ(lastEnd(), "lowBattery");
    const auto kept = PreferencesStore::loadSettings(&defaults);
    EXPECT_EQ(kept.energy.lowBatteryThreshold, 40);
    EXPECT_THAT(ask(ControlVerb::settings),
        HasSubstr(
            R"("energy.requiresACPower":"off","energy.stopsOnLowBattery":"on","energy.lowBatteryThreshold":"40")"));
}

TEST_F(ControlServiceTest, StatusTellsEverything)
{
    connectClaude();
    laptop.set({{"battery", "57"}, {"helper", "ready"}});
    ask(R"({"request":"start","mode":"agent"})");
    agent(AgentSignal::working);
    const auto status = service->status()["status"];
    std::vector<std::string> keys;
    for (const auto& [key, value] : status.items())
        keys.push_back(key);
    EXPECT_THAT(keys,
        ElementsAre("state",
            "mode",
            "endsAt",
            "remaining",
            "elapsed",
            "lastEnd",
            "deadline",
            "canExtend",
            "requirements",
            "guardrails",
            "closedLidStatus",
            "checklist",
            "phase",
            "agents",
            "lastFinished",
            "settings",
            "preferences",
            "power",
            "thermal",
            "helper",
            "connections",
            "pendingAction"));
    EXPECT_EQ(status["endsAt"], (laptop.time.now() + 12h).iso8601());
    EXPECT_EQ(status["deadline"], status["endsAt"]);
    EXPECT_EQ(status["phase"], "working");
    EXPECT_EQ(status["power"].dump(), R"({"isOnACPower":true,"batteryLevel":57})");
    EXPECT_EQ(status["helper"], "ready");
    EXPECT_EQ(status["connections"].dump(), R"({"claude":"connected","codex":"agentNotFound"})");
    EXPECT_EQ(status["pendingAction"], nullptr);
}

TEST_F(ControlServiceTest, TheEndIsToldOnceNoSessionRuns)
{
    EXPECT_EQ(service->ended()->dump(), R"({"ended":{}})") << "none ever ran";
    ask(ControlVerb::start);
    EXPECT_EQ(service->ended(), std::nullopt);
    laptop.set({{"charger", "off"}});
    const auto ended = (*service->ended())["ended"];
    EXPECT_EQ(ended["reason"], "chargerDisconnected");
    EXPECT_EQ(ended["message"], "Session ended — charger unplugged");
}

TEST_F(ControlServiceTest, BadRequestsNameTheirFault)
{
    for (const auto& [line, complaint] :
        std::initializer_list<std::pair<std::string, std::string>>{
            {"", "request: expected a JSON object in one line"},
            {"{", "request: expected a JSON object in one line"},
            {"[]", "request: expected an object"},
            {"{}", "request.request:"},
            {R"({"request":"fly"})", R"(request.request: expected one of "status")"},
            {R"({"request":"stop","mode":"timer"})", R"(does not take "mode" with "stop")"},
            {R"({"request":"start","mode":"soon"})", R"(request.mode: expected one of "timer")"},
            {R"({"request":"start","timerDuration":"59s"})", "request.timerDuration: expected a length from 1m to 24h"},
            {R"({"request":"start","timerDuration":60})", "request.timerDuration:"},
            {R"({"request":"start","untilTime":"24:00"})", "request.untilTime: expected a time of day"},
            {R"({"request":"display"})", "request.on:"},
            {R"({"request":"display","on":"yes"})", "request.on:"},
            {R"({"request":"set","key":"energy"})", "request.value:"},
        }) {
        const auto reply = JSON::parse(ask(line));
        EXPECT_EQ(reply["error"]["kind"], "badRequest") << line;
        EXPECT_THAT(reply["error"]["message"].get<std::string>(), HasSubstr(complaint)) << line;
    }
}

} // namespace vespra
