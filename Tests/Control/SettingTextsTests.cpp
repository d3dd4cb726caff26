#include "Control/Protocol/SettingTexts.h"

#include <gmock/gmock.h>

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

} // namespace vespra
