#include "ControlProtocol/SettingTexts.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace vespra {

using testing::StartsWith;

TEST(SettingsCatalogue, HasEverySettingWithItsLimitsAndChangesThatAlone)
{
    struct Row {
        const char* key;
        const char* atFirst;
        const char* range;
        const char *taken, *refused; // between spaces
        std::size_t values = 2;
    };
    const char *const flags = "on off", *const none = "true ON 1";
    const std::vector<Row> table{
        {"energy.requiresACPower", "on", "on|off", flags, none},
        {"energy.stopsOnLowBattery", "on", "on|off", flags, none},
        {"energy.lowBatteryThreshold", "20", "10..80 by 5", "10 15 80", "9 5 12 81 85 -10 20% 1e1", 15},
        {"energy.batteryTimeLimit",
            "off",
            "off|15m..8h",
            "off 15m 8h",
            "14m59s 8h1s 0 1.5h never 30m1h 10m10m 25 m",
            33},
        {"closedLid.continuesOnBattery", "off", "on|off", flags, none},
        {"agents.endAction", "letSleep", "letSleep|sleepNow|shutDown", "letSleep shutDown", "sleep SLEEPNOW off", 3},
        {"agents.graceDelay", "2m", "0s..15m", "0s 45s 10m15s 15m", "15m1s off -1m 60", 16},
        {"agents.waitingCountsAsFinished", "on", "on|off", flags, none},
        {"agentSafetyCap", "12h", "off|1h..24h", "off 1h 24h", "59m 24h1s 0", 25},
        {"preferences.mode", "timer", "timer|until|unlimited|agent", "until agent", "Timer forever", 4},
        {"preferences.timerDuration", "1h", "1m..24h", "1m 1h30m 24h", "59s 24h1s off 99999999999999999999h -25m", 45},
        {"preferences.untilTime",
            "18:00",
            "00:00..23:59",
            "00:00 06:07 23:59",
            "24:00 6 off 18:3 18:300 12:60 -1:00 12:-1 ab:cd",
            96},
        {"preferences.options.keepsDisplayAwake", "off", "on|off", flags, none},
        {"preferences.options.closedLid", "off", "on|off", flags, none},
        {"showsRemainingTimeInMenuBar", "off", "on|off", flags, none},
        {"playsHeatAlarm", "on", "on|off", flags, none},
        {"toggleSessionShortcut",
            "ctrl+alt+super+w",
            "off|[ctrl+][alt+][shift+][super+]KEY",
            "off ctrl+0 shift+super+z",
            "w shift+w ctrl+ ctrl+W ctrl+w+ ctrl+ctrl+w ctrl++w cmd+w ctrl+ww ctrl+: Off"},
        {"didFinishOnboarding", "off", "on|off", flags, none},
    };
    const auto words = [](const char* text, std::vector<std::string> before) {
        std::istringstream stream{text};
        before.insert(before.end(), std::istream_iterator<std::string>{stream}, {});
        return before;
    };
    const auto defaults = settingTexts::all({});
    ASSERT_EQ(settingsCatalogue().size(), table.size());
    for (std::size_t index = 0; index < table.size(); ++index) {
        const auto& [key, atFirst, range, taken, refused, values] = table[index];
        SCOPED_TRACE(key);
        const auto& setting = settingsCatalogue()[index];
        EXPECT_EQ(defaults[index], std::pair(std::string{key}, std::string{atFirst}));
        EXPECT_EQ(settingTexts::range(setting), range);
        EXPECT_THAT(setting.meaning, testing::Not(testing::IsEmpty()));
        EXPECT_EQ(settingTexts::values(setting).size(), values);
        for (const auto& text : words(taken, settingTexts::values(setting))) {
            const auto change = settingTexts::change(key, text);
            ASSERT_TRUE(change) << change.error();
            auto expected = defaults;
            expected[index].second = text;
            EXPECT_EQ(settingTexts::all(settingTexts::changed({}, {*change})), expected);
        }
        for (const auto& text : words(refused, {""})) {
            const auto change = settingTexts::change(key, text);
            ASSERT_FALSE(change) << text;
            EXPECT_THAT(change.error(), StartsWith(std::string{key} + ": expected"));
        }
    }
}

TEST(SettingsCatalogue, StepsAsTheSettingsWindowDoes)
{
    struct Step {
        const char* key;
        std::optional<Seconds> from, down, up;
    };
    for (const auto& [key, from, down, up] : {
             Step{"energy.batteryTimeLimit", 15min, 15min, 30min},
             Step{"energy.batteryTimeLimit", 8h, 7h + 45min, 8h},
             Step{"agents.graceDelay", 30s, 0s, 90s},
             Step{"agents.graceDelay", 15min, 14min, 15min},
             Step{"agentSafetyCap", 1h, {}, 2h},
             Step{"agentSafetyCap", {}, {}, 1h},
             Step{"agentSafetyCap", 24h, 23h, 24h},
             Step{"preferences.timerDuration", 24h, 23h, 24h},
         }) {
        const auto& length = std::get<setting::Length>(findSetting(key)->kind);
        EXPECT_EQ(stepped(length, from, false), down) << key;
        EXPECT_EQ(stepped(length, from, true), up) << key;
    }
}

TEST(SettingTexts, AreReadFromFilesInBothForms)
{
    const TemporaryDirectory directory;
    const auto path = (directory / "settings.json").string();
    const auto read = [&](const std::string& content) {
        putText(path, content);
        return settingTexts::file(path);
    };
    const UserSettings wanted{
        .session = {.energy = {.requiresACPower = false, .lowBatteryThreshold = 35, .batteryTimeLimit = 15min},
            .agentSafetyCap = {},
            .agents = {.graceDelay = 45s, .endAction = AgentEndAction::sleepNow}},
        .preferences = {.mode = SessionMode::until, .untilTime = {6, 5}, .options = {.closedLid = true}},
        .playsHeatAlarm = false};
    auto listed = JSON::object();
    for (const auto& [key, text] : settingTexts::all(wanted))
        listed[key] = text;
    EXPECT_EQ(settingTexts::changed({}, read(listed.dump()).value()), wanted);
    auto stored = toJSON(wanted.session);
    stored["agentSafetyCap"] = nullptr;
    stored["preferences"] = toJSON(wanted.preferences);
    stored["playsHeatAlarm"] = false;
    EXPECT_EQ(settingTexts::changed({}, read(stored.dump()).value()), wanted);
    EXPECT_EQ(read(R"({"agents":{"graceDelay":60.0}})")->front().second, "60s");

    EXPECT_EQ(settingTexts::file(path + ".no").error(), "cannot read " + path + ".no: No such file or directory");
    for (const auto& [content, complaint] : std::vector<std::pair<const char*, const char*>>{
             {"{", "expected JSON"},
             {"[]", "expected an object"},
             {R"({"energy":true})", "energy: expected an object"},
             {R"({"energy":{"requiresACPower":1}})", "energy.requiresACPower: expected on or off, not \"1\""},
             {R"({"energy.requiresACPower":null})", "energy.requiresACPower: expected on or off, not \"null\""},
             {R"({"energy":{"lowBatteryThreshold":12}})",
                 "energy.lowBatteryThreshold: expected a percentage from 10 to 80 in steps of 5, not \"12\""},
             {R"({"agents":{"graceDelay":901}})", "agents.graceDelay: expected a length from 0s to 15m"},
             {R"({"agents":{"graceDelay":null}})", "agents.graceDelay: expected a length"},
             {R"({"agents":{"graceDelay":0.5}})", "agents.graceDelay: expected a length"},
             {R"({"agentSafetyCap":false})", "agentSafetyCap: expected a length"},
             {R"({"agentSafetyCap":1e300})", "agentSafetyCap: expected a length from 1h to 24h, such as 1h30m, not"},
             {R"({"agents":{"endAction":"sleep"}})", "agents.endAction: expected letSleep, sleepNow or shutDown, not"},
             {R"({"preferences":{"untilTime":{"hour":30,"minute":5}}})", "expected a time of day from 00:00 to 23:59"},
             {R"({"preferences":{"untilTime":{"hour":6}}})", "preferences.untilTime: expected a time of day"},
             {R"({"agents":{"graceDelai":60}})", "expected one of energy.requiresACPower, "},
             {R"({"agentsafetyCap":60})", "not \"agentsafetyCap\"; did you mean \"agentSafetyCap\"?"},
         })
        EXPECT_THAT(read(content).error(), testing::AllOf(StartsWith(path + ": "), testing::HasSubstr(complaint)));
}

} // namespace vespra
