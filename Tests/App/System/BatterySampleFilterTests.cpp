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

TEST(BatterySampleFilter, BelievesWhatIsPlausibleAndTheRestOnceNothingElseIsSeenForTenSeconds)
{
    using Level = std::optional<std::int64_t>;
    struct Step {
        Seconds after;
        Level sample, believed;
        bool hasSlept = false; // before it
    };
    struct Row {
        const char* rule;
        std::int64_t first;
        std::vector<Step> steps;
    };
    for (const auto& [rule, first, steps] : std::vector<Row>{
             {"30 points down are plausible", 57, {{0s, 27, 27}}},
             {"31 are not", 57, {{0s, 26, 57}, {9.9s, {}, 57}, {0.1s, {}, 26}}},
             {"30 points up are plausible", 27, {{0s, 57, 57}}},
             {"31 are not", 26, {{0s, 57, 26}, {9.9s, {}, 26}, {0.1s, {}, 57}}},
             {"1 is a low level", 5, {{0s, 1, 1}}},
             {"0 is a broken gauge", 1, {{0s, 0, 1}, {9.9s, {}, 1}, {0.1s, {}, 0}}},
             {"also at first", 0, {{0s, {}, {}}, {10s, {}, 0}}},
             {"a good sample ends the doubt", 57, {{0s, 0, 57}, {5s, 56, 56}, {20s, {}, 56}}},
             {"a second look 6 points off disagrees", 80, {{0s, 10, 80}, {8s, 16, 80}, {2s, {}, 80}}},
             {"5 points off agree", 80, {{0s, 16, 80}, {8s, 21, 80}, {2s, {}, 21}}},
             {"a sleep explains one jump, but not to 0",
                 90,
                 {{0s, 90, 90, true}, {3min, 0, 90}, {0s, 20, 20}, {0s, 90, 20}}},
             {"nor one that comes much later", 90, {{181s, 59, 90, true}}},
         }) {
        SCOPED_TRACE(rule);
        Filtered filtered{battery(first)};
        for (const auto& step : steps) {
            if (step.hasSlept)
                filtered.filter.didSleep();
            filtered.time.advance(step.after);
            if (step.sample)
                filtered.filter.sample(battery(step.sample));
            EXPECT_EQ(filtered.believed, battery(step.believed));
        }
    }
}

TEST(BatterySampleFilter, BelievesTheChargerAndThatABatteryIsGoneAtOnce)
{
    Filtered filtered{charger(57)};
    filtered.filter.sample(battery(0));
    EXPECT_EQ(filtered.believed, battery(57));
    filtered.filter.sample(PowerSnapshot::desktop());
    EXPECT_EQ(filtered.believed, PowerSnapshot::desktop());
}

} // namespace vespra
