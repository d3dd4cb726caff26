#include "Control/Protocol/SettingTexts.h"

#include <gmock/gmock.h>

namespace vespra {

TEST(SettingTexts, TakeWhatTheSettingsWindowCouldSet)
{
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
            EXPECT_THAT(settingTexts::all(*changed), testing::Contains(testing::Pair(key, text)));
        }
        for (const auto& text : refused)
            EXPECT_THAT(
                settingTexts::changed({}, key, text).error(), testing::StartsWith(std::string{key} + ": expected"));
    }
}

TEST(SettingTexts, ChangeOneSettingOnly)
{
    const auto before = settingTexts::all({});
    for (const auto& [key, text] : before) {
        const auto other = text == "on"           ? "off"
            : text == "off"                       ? (key == "energy.batteryTimeLimit" ? "1h" : "on")
            : key == "agents.endAction"           ? "sleepNow"
            : key == "energy.lowBatteryThreshold" ? "30"
            : key == "agentSafetyCap"             ? "2h"
                                                  : "3m";
        const auto after = settingTexts::all(settingTexts::changed({}, key, other).value());
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t index = 0; index < after.size(); ++index)
            EXPECT_EQ(after[index] != before[index], before[index].first == key) << key << " " << after[index].first;
    }
    EXPECT_THAT(
        settingTexts::changed({}, "energy", "on").error(), testing::StartsWith("expected one of energy.requires"));
}

} // namespace vespra
