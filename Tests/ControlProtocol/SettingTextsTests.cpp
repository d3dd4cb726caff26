#include "ControlProtocol/SettingTexts.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vespra {

TEST(SettingTexts, TakeWhatTheSettingsWindowCouldSetAndChangeThatAlone)
{
    const auto defaults = settingTexts::all({});
    struct Limit {
        const char* key;
        std::vector<std::string> taken;
        std::vector<std::string> refused;
    };
    for (const auto& [key, taken, refused] : {
             Limit{"energy.requiresACPower", {"on", "off"}, {"true", "", "ON"}},
             Limit{"energy.stopsOnLowBattery", {"off"}, {"no", "1"}},
             Limit{"energy.lowBatteryThreshold", {"10", "15", "80"}, {"9", "12", "81", "85", "-10", "20%", "1e1", ""}},
             Limit{"energy.batteryTimeLimit", {"off", "15m", "8h"}, {"14m59s", "8h1s", "0", "1.5h", "never"}},
             Limit{"closedLid.continuesOnBattery", {"on", "off"}, {"1"}},
             Limit{"agents.endAction", {"letSleep", "sleepNow", "shutDown"}, {"sleep", "SLEEPNOW", "off"}},
             Limit{"agents.graceDelay", {"0s", "1m", "15m"}, {"15m1s", "off", "-1m", "60"}},
             Limit{"agents.waitingCountsAsFinished", {"on", "off"}, {"yes"}},
             Limit{"agentSafetyCap", {"off", "1h", "24h"}, {"59m", "24h1s", "0"}},
         }) {
        for (const auto& text : taken) {
            const auto changed = settingTexts::changed({}, key, text);
            ASSERT_TRUE(changed) << changed.error();
            auto expected = defaults;
            std::ranges::find(expected, key, [](const auto& each) { return each.first; })->second = text;
            EXPECT_EQ(settingTexts::all(*changed), expected);
        }
        for (const auto& text : refused) {
            const auto changed = settingTexts::changed({}, key, text);
            ASSERT_FALSE(changed) << key << " " << text;
            EXPECT_THAT(changed.error(), testing::StartsWith(std::string{key} + ": expected"));
        }
    }
    EXPECT_THAT(
        settingTexts::changed({}, "energy", "on").error(), testing::StartsWith("expected one of energy.requires"));
}

TEST(SettingTexts, AreReadFromFilesInBothForms)
{
    const TemporaryDirectory directory;
    const auto path = (directory / "settings.json").string();
    const auto read = [&](const std::string& content) {
        putText(path, content);
        return settingTexts::file(path);
    };
    const SessionSettings changed{
        .energy = {.requiresACPower = false, .lowBatteryThreshold = 35, .batteryTimeLimit = 15min},
        .agentSafetyCap = {},
        .agents = {.graceDelay = 45s, .endAction = AgentEndAction::sleepNow}};
    auto listed = JSON::object();
    for (const auto& [key, text] : settingTexts::all(changed))
        listed[key] = text;
    EXPECT_EQ(read(listed.dump()), changed);
    auto stored = toJSON(changed);
    stored["agentSafetyCap"] = nullptr;
    EXPECT_EQ(read(stored.dump()), changed);
    EXPECT_EQ(read(R"({"agents":{"graceDelay":60.0}})")->agents.graceDelay, 60s);

    EXPECT_EQ(settingTexts::file(path + ".no").error(), "cannot read " + path + ".no: No such file or directory");
    for (const auto& [content, complaint] : std::vector<std::pair<const char*, const char*>>{
             {"{", "expected JSON"},
             {"[]", "expected an object"},
             {R"({"energy":true})", "energy: expected an object"},
             {R"({"energy":{"requiresACPower":1}})", "energy.requiresACPower: expected on or off, not \"1\""},
             {R"({"energy.requiresACPower":null})", "energy.requiresACPower: expected on or off, not \"null\""},
             {R"({"energy":{"lowBatteryThreshold":12}})",
                 "energy.lowBatteryThreshold: expected a percentage from 10 to"},
             {R"({"agents":{"graceDelay":901}})", "agents.graceDelay: expected a length from 0s to 15m"},
             {R"({"agents":{"graceDelay":null}})", "agents.graceDelay: expected a length"},
             {R"({"agents":{"graceDelay":0.5}})", "agents.graceDelay: expected a length"},
             {R"({"agentSafetyCap":false})", "agentSafetyCap: expected a length"},
             {R"({"agentSafetyCap":1e300})", "agentSafetyCap: expected a length from 1h to 24h, such as 1h30m, not"},
             {R"({"agents":{"endAction":"sleep"}})", "agents.endAction: expected letSleep, sleepNow or shutDown"},
             {R"({"agents":{"graceDelai":60}})", "expected one of energy.requiresACPower, "},
             {R"({"agentsafetyCap":60})", "not \"agentsafetyCap\"; did you mean \"agentSafetyCap\"?"},
         })
        EXPECT_THAT(
            read(content).error(), testing::AllOf(testing::StartsWith(path + ": "), testing::HasSubstr(complaint)));
}

} // namespace vespra
