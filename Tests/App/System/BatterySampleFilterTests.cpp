#include "App/System/BatterySampleFilter.h"

#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/FakeMonitors.h"

#include <gtest/gtest.h>

namespace vespra {

namespace {

    struct Filtered {
        explicit Filtered(PowerSnapshot first)
            : filter{first, time, [this](PowerSnapshot reading) { believed = reading; }}
            , believed{filter.believed()}
        {
        }

        VirtualTime time;
        BatterySampleFilter filter;
        PowerSnapshot believed;
    };

} // namespace

TEST(BatterySampleFilter, BelievesOnlyWhatIsPlausible)
{
    struct Row {
        const char* rule;
        std::int64_t before, sample;
        bool isBelieved;
    };
    for (const auto& row : std::vector<Row>{
             {"30 points down are plausible", 57, 27, true},
             {"31 are not", 57, 26, false},
             {"30 points up are plausible", 27, 57, true},
             {"31 are not", 26, 57, false},
             {"1 is a low level", 5, 1, true},
             {"0 is a broken gauge", 1, 0, false},
         }) {
        SCOPED_TRACE(row.rule);
        Filtered filtered{battery(row.before)};
        filtered.filter.sample(battery(row.sample));
        EXPECT_EQ(filtered.believed, battery(row.isBelieved ? row.sample : row.before));
        filtered.time.advance(9.9s);
        EXPECT_EQ(filtered.believed, battery(row.isBelieved ? row.sample : row.before));
        filtered.time.advance(0.1s);
        EXPECT_EQ(filtered.believed, battery(row.sample)) << "nothing else has been seen for 10 s";
    }
}

TEST(BatterySampleFilter, ForgetsABadSampleAfterAGoodOne)
{
    Filtered filtered{battery(57)};
    filtered.filter.sample(battery(0));
    filtered.time.advance(5s);
    filtered.filter.sample(battery(56));
    EXPECT_EQ(filtered.believed, battery(56));
    filtered.time.advance(20s);
    EXPECT_EQ(filtered.believed, battery(56));
}

TEST(BatterySampleFilter, WaitsOnWhileTheSecondLookDisagrees)
{
    Filtered filtered{battery(80)};
    filtered.filter.sample(battery(10));
    filtered.time.advance(8s);
    filtered.filter.sample(battery(16)); // 6 points apart
    filtered.time.advance(2s);
    EXPECT_EQ(filtered.believed, battery(80));
    filtered.filter.sample(battery(21));
    filtered.time.advance(10s);
    EXPECT_EQ(filtered.believed, battery(21)) << "5 points apart is agreement";
}

TEST(BatterySampleFilter, BelievesTheChargerAtOnce)
{
    Filtered filtered{charger(57)};
    filtered.filter.sample(battery(0));
    EXPECT_EQ(filtered.believed, battery(57));
}

TEST(BatterySampleFilter, DoesNotKnowTheLevelWhileTheFirstReadingIsInDoubt)
{
    Filtered filtered{battery(0)};
    EXPECT_EQ(filtered.believed, battery({}));
    filtered.time.advance(10s);
    EXPECT_EQ(filtered.believed, battery(0));
}

TEST(BatterySampleFilter, BelievesAnyLevelBut0AfterSleep)
{
    Filtered filtered{battery(90)};
    filtered.filter.didSleep();
    filtered.filter.sample(battery(90)); // from before the sleep
    filtered.time.advance(3min);
    filtered.filter.sample(battery(0));
    EXPECT_EQ(filtered.believed, battery(90));
    filtered.filter.sample(battery(20));
    EXPECT_EQ(filtered.believed, battery(20));
    filtered.filter.sample(battery(90));
    EXPECT_EQ(filtered.believed, battery(20)) << "the sleep explains one jump, not two";
    filtered.filter.didSleep();
    filtered.time.advance(181s);
    filtered.filter.sample(battery(59));
    EXPECT_EQ(filtered.believed, battery(90)) << "nor what comes much later";
}

TEST(BatterySampleFilter, BelievesThatABatteryIsGone)
{
    Filtered filtered{battery(57)};
    filtered.filter.sample(PowerSnapshot::desktop());
    EXPECT_EQ(filtered.believed, PowerSnapshot::desktop());
}

} // namespace vespra
