#include "App/System/linux/Sysfs.h"
#include "App/System/linux/UPowerReading.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <limits>

namespace vespra {

namespace {

    /// Files below class/, with their content.
    using Files = std::vector<std::pair<std::string, std::string>>;

    void write(const TemporaryDirectory& root, const Files& files)
    {
        for (const auto& [name, content] : files) {
            const auto file = root / "class" / name;
            std::filesystem::create_directories(file.parent_path());
            std::ofstream{file} << content << "\n";
        }
    }

    std::string described(const PowerSnapshot& power)
    {
        return std::string{power.isOnACPower ? "charger" : "battery"} + " "
            + (power.batteryLevel ? std::to_string(*power.batteryLevel) : "unknown");
    }

    const Files mains{{"power_supply/AC/type", "Mains"}, {"power_supply/AC/online", "1"}};
    const Files unplugged{{"power_supply/AC/type", "Mains"}, {"power_supply/AC/online", "0"}};
    const Files first{{"power_supply/BAT0/type", "Battery"},
        {"power_supply/BAT0/capacity", "57"},
        {"power_supply/BAT0/status", "Discharging"}};

    Files joined(std::initializer_list<Files> parts)
    {
        Files all;
        for (const auto& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }

} // namespace

TEST(KernelPower, IsReadFromTheSupplies)
{
    struct Row {
        const char* rule;
        Files files;
        const char* expected;
    };
    for (const auto& row :
        std::vector<Row>{
            {"no supply at all is a desktop", {}, "charger unknown"},
            {"a charger alone is a desktop", unplugged, "charger unknown"},
            {"on the charger", joined({mains, first}), "charger 57"},
            {"off the charger", joined({unplugged, first}), "battery 57"},
            {"any port that charges will do",
                joined({unplugged, first, {{"power_supply/C1/type", "USB"}, {"power_supply/C1/online", "1"}}}),
                "charger 57"},
            {"without a charger to ask, the battery says", first, "battery 57"},
            {"a mouse's battery never counts",
                joined({mains,
                    first,
                    {{"power_supply/A/type", "Battery"},
                        {"power_supply/A/scope", "Device"},
                        {"power_supply/A/capacity", "3"}}}),
                "charger 57"},
            {"an empty bay is no battery",
                joined({mains,
                    first,
                    {{"power_supply/B/type", "Battery"},
                        {"power_supply/B/present", "0"},
                        {"power_supply/B/capacity", "0"}}}),
                "charger 57"},
            {"two batteries are joined by energy",
                joined({unplugged,
                    first,
                    {{"power_supply/BAT0/energy_now", "10"},
                        {"power_supply/BAT0/energy_full", "20"},
                        {"power_supply/BAT1/type", "Battery"},
                        {"power_supply/BAT1/capacity", "100"},
                        {"power_supply/BAT1/energy_now", "60"},
                        {"power_supply/BAT1/energy_full", "80"}}}),
                "battery 70"},
            {"or else by the mean of their levels",
                joined(
                    {unplugged, first, {{"power_supply/BAT1/type", "Battery"}, {"power_supply/BAT1/capacity", "100"}}}),
                "battery 79"},
            {"a level that is no number is unknown",
                joined({unplugged, {{"power_supply/BAT0/type", "Battery"}, {"power_supply/BAT0/capacity", "full"}}}),
                "battery unknown"},
        }) {
        SCOPED_TRACE(row.rule);
        const TemporaryDirectory root;
        write(root, row.files);
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
        {{"thermal/thermal_zone0/type", "x86_pkg_temp"},
            {"thermal/thermal_zone0/temp", "61500"},
            {"thermal/thermal_zone0/trip_point_0_type", "critical"},
            {"thermal/thermal_zone0/trip_point_0_temp", "105000"},
            {"thermal/thermal_zone0/trip_point_1_type", "hot"},
            {"thermal/thermal_zone0/trip_point_1_temp", "100000"},
            {"thermal/thermal_zone0/trip_point_2_type", "passive"},
            {"thermal/thermal_zone0/trip_point_2_temp", "95000"},
            {"thermal/thermal_zone1/type", "acpitz"},
            {"thermal/thermal_zone1/temp", "40000"},
            {"thermal/thermal_zone1/trip_point_0_type", "critical"},
            {"thermal/thermal_zone1/trip_point_0_temp", "-274000"},
            {"thermal/thermal_zone2/type", "iwlwifi_1"},
            {"thermal/thermal_zone2/temp", "80000"},
            {"thermal/thermal_zone3/type", "broken"},
            {"thermal/thermal_zone3/temp", "-40000"},
            {"thermal/cooling_device0/type", "Fan"}});
    const auto samples = sysfs::readThermometers(root.path());
    ASSERT_EQ(samples.size(), 2U);
    EXPECT_EQ(samples[0].sensor, "thermal_zone0");
    EXPECT_EQ(samples[0].temperature, 61.5);
    EXPECT_EQ(samples[0].limit, 100);
    EXPECT_EQ(samples[0].passiveTrip, 95);
    EXPECT_EQ(samples[1].limit, std::nullopt);
}

TEST(KernelThermometers, AreTheProcessorsOwnWhereNoZoneHasALimit)
{
    const TemporaryDirectory root;
    write(root,
        {{"thermal/thermal_zone0/type", "acpitz"},
            {"thermal/thermal_zone0/temp", "40000"},
            {"hwmon/hwmon0/name", "nvme"},
            {"hwmon/hwmon0/temp1_input", "50000"},
            {"hwmon/hwmon0/temp1_crit", "80000"},
            {"hwmon/hwmon1/name", "coretemp"},
            {"hwmon/hwmon1/temp1_input", "70000"},
            {"hwmon/hwmon1/temp1_crit", "100000"},
            {"hwmon/hwmon1/temp2_input", "60000"}});
    const auto samples = sysfs::readThermometers(root.path());
    ASSERT_EQ(samples.size(), 3U);
    EXPECT_EQ(samples[1].sensor, "hwmon1/temp1");
    EXPECT_EQ(samples[1].limit, 100);
    EXPECT_EQ(samples[2].limit, std::nullopt);
}

TEST(Connectors, LeadOutOfTheMachineOrNot)
{
    for (const auto* name : {"card0-HDMI-A-1", "card1-DP-3", "card0-VGA-1", "card0-DVI-I-1"})
        EXPECT_TRUE(sysfs::isExternalConnector(name)) << name;
    for (const auto* name : {"card0-eDP-1",
             "card0-LVDS-1",
             "card0-DSI-1",
             "card0-Virtual-1",
             "card0-Writeback-1",
             "card0",
             "renderD128",
             "version",
             ""})
        EXPECT_FALSE(sysfs::isExternalConnector(name)) << name;
}

TEST(ExternalDisplay, IsOneThatIsConnectedOutside)
{
    const TemporaryDirectory root;
    EXPECT_FALSE(sysfs::hasExternalDisplay(root.path()));
    write(root, {{"drm/card0-eDP-1/status", "connected"}, {"drm/card0-HDMI-A-1/status", "disconnected"}});
    EXPECT_FALSE(sysfs::hasExternalDisplay(root.path()));
    write(root, {{"drm/card0-HDMI-A-1/status", "connected"}});
    EXPECT_TRUE(sysfs::hasExternalDisplay(root.path()));
}

} // namespace vespra
