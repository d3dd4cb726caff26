#include "App/System/linux/Sysfs.h"
#include "App/System/linux/UPowerReading.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <limits>
#include <sstream>

namespace vespra {

namespace {

    using testing::AllOf;
    using testing::ElementsAre;
    using testing::Field;

    /// Writes files below class/ in `root`: "BAT0/type=Battery BAT0/capacity=57" in the folder power_supply.
    void write(const TemporaryDirectory& root, const char* folder, const std::string& files)
    {
        std::istringstream all{files};
        for (std::string file; all >> file;) {
            const auto split = file.find('=');
            const auto path = root / "class" / folder / file.substr(0, split);
            std::filesystem::create_directories(path.parent_path());
            std::ofstream{path} << file.substr(split + 1) << "\n";
        }
    }

    std::string described(const PowerSnapshot& power)
    {
        return std::string{power.isOnACPower ? "charger" : "battery"} + " "
            + (power.batteryLevel ? std::to_string(*power.batteryLevel) : "unknown");
    }

    auto thermometer(const char* sensor, double temperature, std::optional<double> limit, std::optional<double> trip)
    {
        return AllOf(Field("sensor", &ThermalSample::sensor, sensor),
            Field("temperature", &ThermalSample::temperature, temperature),
            Field("limit", &ThermalSample::limit, limit),
            Field("passiveTrip", &ThermalSample::passiveTrip, trip));
    }

} // namespace

TEST(KernelPower, IsReadFromTheSupplies)
{
    const std::string mains = "AC/type=Mains AC/online=1 ", unplugged = "AC/type=Mains AC/online=0 ";
    const std::string first = "BAT0/type=Battery BAT0/capacity=57 BAT0/status=Discharging ";
    struct Row {
        const char* rule;
        std::string supplies;
        const char* expected;
    };
    for (const auto& row : std::vector<Row>{
             {"no supply at all is a desktop", "", "charger unknown"},
             {"a charger alone is a desktop", unplugged, "charger unknown"},
             {"on the charger", mains + first, "charger 57"},
             {"off the charger", unplugged + first, "battery 57"},
             {"any port that charges will do", unplugged + first + "C1/type=USB C1/online=1", "charger 57"},
             {"without a charger to ask, the battery says", first, "battery 57"},
             {"a mouse's battery never counts",
                 mains + first + "A/type=Battery A/scope=Device A/capacity=3",
                 "charger 57"},
             {"an empty bay is no battery", mains + first + "B/type=Battery B/present=0 B/capacity=0", "charger 57"},
             {"two batteries are joined by energy",
                 unplugged + first
                     + "BAT0/energy_now=10 BAT0/energy_full=20 "
                       "BAT1/type=Battery BAT1/capacity=100 BAT1/energy_now=60 BAT1/energy_full=80",
                 "battery 70"},
             {"or else by the mean of their levels",
                 unplugged + first + "BAT1/type=Battery BAT1/capacity=100",
                 "battery 79"},
             {"without a level of its own it is reckoned from the energy",
                 mains + "BAT0/type=Battery BAT0/energy_now=10 BAT0/energy_full=40",
                 "charger 25"},
             {"or from the charge",
                 mains + first + "BAT1/type=Battery BAT1/charge_now=43 BAT1/charge_full=100",
                 "charger 50"},
             {"a charger that does not read is not unplugged",
                 "AC/type=Mains BAT0/type=Battery BAT0/capacity=57 BAT0/status=Full",
                 "charger 57"},
             {"a level that is no number is unknown",
                 unplugged + "BAT0/type=Battery BAT0/capacity=full",
                 "battery unknown"},
         }) {
        SCOPED_TRACE(row.rule);
        const TemporaryDirectory root;
        write(root, "power_supply", row.supplies);
        EXPECT_EQ(described(sysfs::readPower(root.path())), row.expected);
    }
}

TEST(UPowerReading, CountsOnlyWhatIsSaidOfABattery)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        const char* rule;
        UPowerReading reading;
        const char* expected;
    };
    for (const auto& row : std::vector<Row>{
             {"nothing is said", {}, "charger unknown"},
             {"no battery", {false, 0U, false, 0.0}, "charger unknown"},
             {"a bay without its battery", {true, 2U, false, 50.0}, "charger unknown"},
             {"on battery", {true, 2U, true, 56.5}, "battery 57"},
             {"on the charger", {false, 2U, true, 56.49}, "charger 56"},
             {"a UPS has no level of the machine's own", {true, 3U, true, 80.0}, "battery unknown"},
             {"a keyboard is no battery", {true, 6U, true, 80.0}, "charger unknown"},
             {"the charger is not said", {{}, 2U, true, 50.0}, "charger 50"},
             {"the level is not said", {true, 2U, true, {}}, "battery unknown"},
             {"no number", {true, 2U, true, nan}, "battery unknown"},
             {"too much", {true, 2U, true, 100.6}, "battery 100"},
             {"too little", {true, 2U, true, -3.0}, "battery 0"},
         }) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(described(powerSnapshot(row.reading)), row.expected);
    }
}

TEST(KernelThermometers, TakeTheLowestTripThatIsSet)
{
    const TemporaryDirectory root;
    write(root,
        "thermal",
        "thermal_zone0/type=x86_pkg_temp thermal_zone0/temp=61500 "
        "thermal_zone0/trip_point_0_type=critical thermal_zone0/trip_point_0_temp=105000 "
        "thermal_zone0/trip_point_1_type=hot thermal_zone0/trip_point_1_temp=100000 "
        "thermal_zone0/trip_point_2_type=passive thermal_zone0/trip_point_2_temp=95000 "
        "thermal_zone1/type=acpitz thermal_zone1/temp=40000 "
        "thermal_zone1/trip_point_0_type=critical thermal_zone1/trip_point_0_temp=-274000 "
        "thermal_zone2/type=iwlwifi_1 thermal_zone2/temp=80000 "
        "thermal_zone3/type=broken thermal_zone3/temp=-40000 cooling_device0/type=Fan");
    EXPECT_THAT(sysfs::readThermometers(root.path()),
        ElementsAre(thermometer("thermal_zone0", 61.5, 100, 95), thermometer("thermal_zone1", 40, {}, {})));
}

TEST(KernelThermometers, AreTheProcessorsOwnBesideTheZones)
{
    const TemporaryDirectory root;
    write(root,
        "thermal",
        "thermal_zone0/type=acpitz thermal_zone0/temp=52000 "
        "thermal_zone0/trip_point_0_type=critical thermal_zone0/trip_point_0_temp=128000");
    write(root,
        "hwmon",
        "hwmon0/name=nvme hwmon0/temp1_input=50000 hwmon0/temp1_crit=80000 "
        "hwmon1/name=coretemp hwmon1/temp1_input=70000 hwmon1/temp1_crit=100000 hwmon1/temp2_input=60000");
    EXPECT_THAT(sysfs::readThermometers(root.path()),
        ElementsAre(thermometer("thermal_zone0", 52, 128, {}),
            thermometer("hwmon1/temp1", 70, 100, {}),
            thermometer("hwmon1/temp2", 60, {}, {})));
}

TEST(ExternalDisplay, IsOneThatIsConnectedOutside)
{
    for (const auto* connectors : {"",
             "card0-eDP-1/status=connected card0-HDMI-A-1/status=disconnected",
             "card0-LVDS-1/status=connected card0-DSI-1/status=connected card0-Virtual-1/status=connected",
             "card0-Writeback-1/status=connected card0/status=connected renderD128/status=connected"}) {
        const TemporaryDirectory root;
        write(root, "drm", connectors);
        EXPECT_FALSE(sysfs::hasExternalDisplay(root.path())) << connectors;
    }
    for (const std::string connector : {"card0-HDMI-A-1", "card1-DP-3", "card0-VGA-1", "card0-DVI-I-1"}) {
        const TemporaryDirectory root;
        write(root, "drm", "card0-eDP-1/status=connected " + connector + "/status=connected");
        EXPECT_TRUE(sysfs::hasExternalDisplay(root.path())) << connector;
    }
}

} // namespace vespra
