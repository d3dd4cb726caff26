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

TEST(ThermalEstimate, LooksAtTheAverageOfHalfAMinute)
{
    ThermalEstimate estimate;
    EXPECT_EQ(estimate.update({sample(60)}, at(0s)), nominal);
    EXPECT_EQ(estimate.update({sample(95)}, at(10s)), nominal);
    EXPECT_EQ(estimate.update({sample(95)}, at(20s)), fair);
    EXPECT_EQ(estimate.update({sample(95)}, at(30s)), fair) << "the first reading is 30 s old and counts";
    EXPECT_EQ(estimate.update({sample(95)}, at(40s)), serious) << "now it does not";
}

TEST(ThermalEstimate, CountsAReadingAtTheLimitAtOnce)
{
    ThermalEstimate estimate;
    EXPECT_EQ(estimate.update({sample(50)}, at(0s)), nominal);
    EXPECT_EQ(estimate.update({sample(99.9)}, at(5s)), nominal);
    EXPECT_EQ(estimate.update({sample(100)}, at(10s)), critical);
}

TEST(ThermalEstimate, LeavesALevelFiveDegreesBelowIt)
{
    ThermalEstimate estimate;
    EXPECT_EQ(estimate.update({sample(90)}, at(0s)), serious);
    EXPECT_EQ(estimate.update({sample(85)}, at(60s)), serious);
    EXPECT_EQ(estimate.update({sample(84.9)}, at(120s)), fair);
    EXPECT_EQ(estimate.update({sample(89.9)}, at(180s)), fair);
    EXPECT_EQ(estimate.update({sample(75)}, at(240s)), fair);
    EXPECT_EQ(estimate.update({sample(74.9)}, at(300s)), nominal);
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
