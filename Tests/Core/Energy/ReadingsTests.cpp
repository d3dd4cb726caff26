#include "Core/Energy/PowerSnapshot.h"
#include "Core/Energy/ThermalLevel.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

TEST(PowerSnapshot, ReadsTheSystemsList)
{
    const auto cell = [](PowerSourceValue current, PowerSourceValue maximum, const char* type = "InternalBattery") {
        return PowerSourceDescription{
            {"Type", std::string{type}}, {"Current Capacity", current}, {"Max Capacity", maximum}};
    };
    using Number = std::int64_t;
    struct Row {
        const char* rule;
        std::vector<PowerSourceDescription> sources;
        std::optional<std::int64_t> level;
    };
    for (const auto& row : std::vector<Row>{
             {"percent", {cell(Number{57}, Number{100})}, 57},
             {"rounded down", {cell(Number{1}, Number{3})}, 33},
             {"rounded up", {cell(Number{2}, Number{3})}, 67},
             {"half away from zero", {cell(Number{1}, Number{8})}, 13},
             {"clamped", {cell(Number{120}, Number{100})}, 100},
             {"no maximum", {cell(Number{57}, Number{0})}, {}},
             {"a text is no capacity", {cell(std::string{"57"}, Number{100})}, {}},
             {"missing", {cell(std::monostate{}, Number{100})}, {}},
             {"no battery", {cell(Number{57}, Number{100}, "UPS")}, {}},
             {"the first battery counts", {cell(Number{5}, Number{10}), cell(Number{9}, Number{10})}, 50},
             {"nothing", {}, {}},
         }) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(powerSnapshot("AC Power", row.sources).batteryLevel, row.level);
    }
    EXPECT_TRUE(powerSnapshot({}, {}).isOnACPower);
    EXPECT_TRUE(powerSnapshot("AC Power", {}).isOnACPower);
    EXPECT_FALSE(powerSnapshot("Battery Power", {}).isOnACPower);
    EXPECT_FALSE(powerSnapshot("", {}).isOnACPower);
}

TEST(ThermalLevel, AnUnknownStateCountsAsHot)
{
    EXPECT_EQ(thermalLevelFromSystem(0), ThermalLevel::nominal);
    EXPECT_EQ(thermalLevelFromSystem(3), ThermalLevel::critical);
    EXPECT_EQ(thermalLevelFromSystem(4), ThermalLevel::serious);
    EXPECT_EQ(thermalLevelFromSystem(-1), ThermalLevel::serious);
}

} // namespace
