#include "App/ControlSocket/ControlService.h"

#include "App/Model/ModelSettings.h"
#include "App/Model/PreferencesStore.h"
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
    connectClaudeElsewhere();
    setSettings([](auto& settings) { settings.agentSafetyCap = 3h; });
    const auto before = model().preferences();
    ControlService service{model()};
    service.reply({.verb = ControlVerb::display});
    EXPECT_TRUE(model().needsAgentConnection({.mode = SessionMode::agent})) << "read only when it matters";
    for (const auto& [request, plan] : std::vector<std::pair<const char*, SessionPlan>>{
             {R"({"request":"start","mode":"timer","timerDuration":"1m"})", plan::Timer{1min}},
             {R"({"request":"start","mode":"until","untilTime":"06:05"})", plan::Until{{6, 5}}},
             {R"({"request":"start","mode":"agent"})", plan::Agent{3h}},
         }) {
        SCOPED_TRACE(request);
        service.reply(*controlProtocol::request(request));
        ASSERT_TRUE(isActive());
        EXPECT_EQ(coordinator().state().activeSession()->plan, plan);
        coordinator().stop(end::StoppedByUser{});
    }
    EXPECT_EQ(model().preferences(), before);
}

TEST_F(ControlServiceTest, WhatIsSetKeepsNothingThatWasForThisRunOnly)
{
    auto forThisRun = coordinator().settings();
    forThisRun.agents.graceDelay = 1min;
    coordinator().setSettings(forThisRun);
    ControlService{model()}.reply(
        *controlProtocol::request(R"({"request":"set","key":"agentSafetyCap","value":"3h"})"));
    EXPECT_EQ(PreferencesStore::loadSettings(&defaults), SessionSettings{.agentSafetyCap = 3h});
}

TEST_F(ControlServiceTest, KeepsEverySettingWhereItBelongsAndWritesNoOther)
{
    for (const auto& setting : settingsCatalogue()) {
        SCOPED_TRACE(setting.key);
        defaults.texts.clear();
        defaults.flags.clear();
        const auto values = settingTexts::values(setting);
        const auto before = settingTexts::text(setting, settingsOf(model()));
        const auto value = values.back() == before ? values.front() : values.back();
        ControlService service{model()};
        for (const auto& each : {value, before, value})
            EXPECT_TRUE(service.reply({.verb = ControlVerb::set, .key = std::string{setting.key}, .value = each})
                    .contains("done"));
        EXPECT_EQ(service.reply({.verb = ControlVerb::settings})["settings"][std::string{setting.key}], value);
        EXPECT_EQ(defaults.texts.size() + defaults.flags.size(), 1U);
        launch(); // reads what is kept
        EXPECT_EQ(settingTexts::text(setting, settingsOf(model())), value);
    }
}

} // namespace vespra
