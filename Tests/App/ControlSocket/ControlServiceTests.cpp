#include "App/ControlSocket/ControlService.h"

#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    using testing::HasSubstr;

    /// What terminals get is tested from there.
    class ControlServiceTest : public LaunchedApplication {
    protected:
        void SetUp() override { launch(); }
    };

} // namespace

TEST_F(ControlServiceTest, StartsEveryPlanForThisTimeOnly)
{
    struct Start {
        const char* request;
        SessionPlan plan;
        bool keepsDisplayAwake = false;
    };
    connectClaudeElsewhere();
    setSettings([](auto& settings) { settings.agentSafetyCap = 3h; });
    const auto before = model().preferences();
    ControlService service{model()};
    service.reply({.verb = ControlVerb::display});
    EXPECT_TRUE(model().needsAgentConnection({.mode = SessionMode::agent})) << "read only when it matters";
    for (const auto& [request, plan, keepsDisplayAwake] : {
             Start{R"({"request":"start"})", plan::Timer{1h}},
             Start{R"({"request":"start","mode":"timer","timerDuration":"1m"})", plan::Timer{1min}},
             Start{R"({"request":"start","mode":"until","untilTime":"06:05"})", plan::Until{{6, 5}}},
             Start{R"({"request":"start","mode":"unlimited","keepsDisplayAwake":true})", plan::Unlimited{}, true},
             Start{R"({"request":"start","mode":"agent"})", plan::Agent{3h}},
         }) {
        SCOPED_TRACE(request);
        service.reply(*controlProtocol::request(request));
        ASSERT_TRUE(isActive());
        const auto* session = coordinator().state().activeSession();
        EXPECT_EQ(session->plan, plan);
        EXPECT_EQ(session->options, (SessionOptions{.keepsDisplayAwake = keepsDisplayAwake}));
        coordinator().stop(end::StoppedByUser{});
    }
    EXPECT_EQ(model().preferences(), before);
}

} // namespace vespra
