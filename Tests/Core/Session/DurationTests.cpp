#include "Core/Session/CountdownFormat.h"
#include "Core/Session/DurationSteps.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

TEST(DurationSteps, StepStrictlyUpAndDown)
{
    struct Row {
        Seconds from;
        std::optional<Seconds> previous, next;
    };
    for (const auto& row : std::vector<Row>{
             {50s, {}, 60s},
             {60s, {}, 2min},
             {45min, 30min, 1h},
             {61min, 1h, 75min},
             {4h, 225min, 270min},
             {8h, 450min, 9h},
             {24h, 23h, {}},
             {25h, 24h, {}},
         }) {
        SCOPED_TRACE(row.from.count());
        EXPECT_EQ(DurationSteps::previous(row.from), row.previous);
        EXPECT_EQ(DurationSteps::next(row.from), row.next);
    }
}

TEST(CountdownFormat, RoundsTimeLeftUpAndTimeRunDown)
{
    struct Row {
        double seconds;
        const char* remaining;
        const char* elapsed;
    };
    for (const auto& row : std::vector<Row>{
             {-3, "0:00", "0:00"},
             {0, "0:00", "0:00"},
             {0.1, "0:01", "0:00"},
             {9, "0:09", "0:09"},
             {59.2, "1:00", "0:59"},
             {59.9, "1:00", "0:59"},
             {245, "4:05", "4:05"},
             {3599.2, "1:00:00", "59:59"},
             {86399, "23:59:59", "23:59:59"},
             {93787, "26:03:07", "26:03:07"},
         }) {
        EXPECT_EQ(CountdownFormat::remaining(Seconds{row.seconds}), row.remaining) << row.seconds;
        EXPECT_EQ(CountdownFormat::elapsed(Seconds{row.seconds}), row.elapsed) << row.seconds;
    }
}

} // namespace
