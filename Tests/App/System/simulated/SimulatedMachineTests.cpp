#include "App/System/Platform.h"
#include "App/System/simulated/MachineProtocol.h"
#include "App/System/simulated/SimulatedPlatform.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/QtApplication.h"

#include <gmock/gmock.h>
#include <sstream>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::HasSubstr;
    using testing::IsEmpty;

    class SimulatedPlatform : public testing::Test {
    protected:
        /// Changes the laptop; returns what its monitors tell of it.
        std::vector<std::string> set(const MachineSettings& settings)
        {
            EXPECT_TRUE(platform.machine->set(settings));
            return std::exchange(told, {});
        }

        const QtApplication application;
        Platform platform = makeSimulatedPlatform();
        std::vector<std::string> told;
    };

} // namespace

TEST(MachineSettings, RefuseWhatTheyDoNotTake)
{
    std::istringstream texts{
        "battery=101 battery=-1 battery=5.5 battery= charger=yes lid=CLOSED display=two thermal=hot "
        "helper=Ready appearance=auto sleep=later shortcut=now press= press=/session.extend "
        "press=session.endingSoon/"};
    for (std::string text; texts >> text;) {
        const auto change = changed({}, {{"lid", "closed"}, machineSetting(text).value()});
        ASSERT_FALSE(change) << text;
        EXPECT_THAT(change.error(), HasSubstr(text.substr(0, text.find('=')) + " takes "));
    }
    EXPECT_THAT(changed({}, {{"brightness", "1"}}).error(), HasSubstr("\"brightness\" is nothing to set"));
    EXPECT_FALSE(machineSetting("lid"));
    EXPECT_FALSE(machineSetting("=closed"));
    EXPECT_EQ(machineSetting("a=b=c"), (MachineSettings::value_type{"a", "b=c"}));
}

/// The monitors' common rule, seen from outside: the first reading is there, later ones are told if they differ.
TEST_F(SimulatedPlatform, TellsOnlyOfRealChanges)
{
    platform.power->onChange
        = [&](PowerSnapshot power) { told.push_back("level " + std::to_string(*power.batteryLevel)); };
    platform.thermal->onChange = [&](ThermalLevel level) { told.emplace_back(rawValue(level)); };
    platform.lid->onChange = [&](bool closed) { told.emplace_back(closed ? "closed alone" : "not closed alone"); };
    EXPECT_EQ(platform.power->snapshot(), charger(80));

    EXPECT_THAT(set({{"battery", "80"}, {"helper", "ready"}}), IsEmpty());
    EXPECT_THAT(set({{"battery", "79"}}), ElementsAre("level 79"));
    EXPECT_THAT(set({{"charger", "off"}, {"thermal", "serious"}}), ElementsAre("level 79", "serious"));
    EXPECT_THAT(set({{"lid", "closed"}, {"display", "external"}}), IsEmpty());
    EXPECT_TRUE(platform.lid->isLidClosed());
    EXPECT_THAT(set({{"display", "internal"}}), ElementsAre("closed alone"));
    EXPECT_THAT(set({{"lid", "open"}}), ElementsAre("not closed alone"));
    EXPECT_EQ(platform.power->snapshot(), battery(79));
}

TEST_F(SimulatedPlatform, TellsOfSleepAndOfADisplayThatComesOn)
{
    platform.sleep->onWillSleep = [&] { told.emplace_back("will sleep"); };
    platform.sleep->onDidWake = [&] { told.emplace_back("did wake"); };
    platform.display->onScreensWake = [&] { told.emplace_back("screens woke"); };
    platform.display->setWatchesWaking(true);
    EXPECT_TRUE(platform.display->turnOff());
    EXPECT_FALSE(platform.machine->state().isScreenOn);
    EXPECT_THAT(set({{"screen", "on"}, {"sleep", "now"}}), ElementsAre("screens woke", "will sleep", "did wake"));
}

} // namespace vespra
