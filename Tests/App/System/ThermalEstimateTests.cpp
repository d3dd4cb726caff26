#include "App/System/ThermalEstimate.h"

#include <gtest/gtest.h>

namespace vespra {

namespace {

    using enum ThermalLevel;

    /// Limit 100 unless said otherwise.
    ThermalSample sample(double temperature, std::optional<double> passiveTrip = {})
    {
        return {.sensor = "zone", .temperature = temperature, .passiveTrip = passiveTrip, .limit = 100};
    }

    ContinuousInstant at(Seconds seconds) { return {seconds}; }

} // namespace

TEST(ThermalEstimate, KnowsTheThresholdsOnBothSides)
{
    struct Row {
        double temperature;
        std::optional<double> passiveTrip;
        ThermalLevel expected;
    };
    for (const auto& row : std::vector<Row>{
             {79.9, {}, nominal},
             {80, {}, fair},
             {89.9, {}, fair},
             {90, {}, serious},
             {96.9, {}, serious},
             {97, {}, critical},
             {94.9, 95, fair}, // the trip is closer to the limit
             {95, 95, serious},
             {89.9, 60, fair}, // the trip says nothing about heat
             {90, 98, serious},
         }) {
        SCOPED_TRACE(testing::Message() << row.temperature << " with trip " << row.passiveTrip.value_or(0));
        EXPECT_EQ(ThermalEstimate{}.update({sample(row.temperature, row.passiveTrip)}, at(0s)), row.expected);
    }
}

TEST(ThermalEstimate, FollowsTheCourse)
{
    // The temperature at each time, and the level then. After 30 s a reading no longer counts.
    using Course = std::vector<std::tuple<Seconds, double, ThermalLevel>>;
    for (const auto& [rule, course] : std::vector<std::pair<const char*, Course>>{
             {"the average of half a minute counts",
                 {{0s, 60, nominal}, {10s, 95, nominal}, {20s, 95, fair}, {30s, 95, fair}, {40s, 95, serious}}},
             {"a reading at the limit counts at once", {{0s, 50, nominal}, {5s, 99.9, nominal}, {10s, 100, critical}}},
             {"serious is left 5 degrees below it", {{0s, 90, serious}, {60s, 85, serious}, {120s, 84.9, fair}}},
             {"fair too", {{0s, 80, fair}, {60s, 89.9, fair}, {120s, 75, fair}, {180s, 74.9, nominal}}},
         }) {
        SCOPED_TRACE(rule);
        ThermalEstimate estimate;
        for (const auto& [time, temperature, level] : course)
            EXPECT_EQ(estimate.update({sample(temperature)}, at(time)), level) << temperature;
    }
}

TEST(ThermalEstimate, CountsTheHottestSensorThatHasALimit)
{
    ThermalEstimate estimate;
    const ThermalSample unlimited{.sensor = "battery", .temperature = 120};
    EXPECT_EQ(estimate.update({unlimited}, at(0s)), nominal);
    const ThermalSample other{.sensor = "other", .temperature = 62, .limit = 70};
    EXPECT_EQ(estimate.update({unlimited, sample(80), other}, at(5s)), serious);
    EXPECT_EQ(estimate.update({unlimited, sample(80)}, at(35s)), serious) << "a sensor may miss a reading";
    EXPECT_EQ(estimate.update({unlimited, sample(80)}, at(35.1s)), fair) << "one that is gone is forgotten";
}

} // namespace vespra
