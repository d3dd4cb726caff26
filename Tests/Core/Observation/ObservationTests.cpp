#include "Core/Observation/ObservationLoop.h"
#include "Core/Observation/Observed.h"
#include "Core/Observation/ObservedClock.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace vespra;

namespace {

struct Observation : testing::Test {
    ManualMainLoop mainLoop;
    Observed<int> chosen{1}, other{10};
    std::string runs;
};

TEST_F(Observation, RunsAgainOnceInALaterTurnAfterWhatItRead)
{
    ObservationLoop loop{mainLoop, [&] { runs += std::to_string(chosen.get()) + " "; }};
    EXPECT_EQ(runs, "1 ");
    chosen.set(2);
    chosen.set(3);
    EXPECT_EQ(runs, "1 ");
    mainLoop.run();
    EXPECT_EQ(runs, "1 3 ");
    chosen.set(3);
    other.set(11);
    EXPECT_EQ(mainLoop.run(), 0);
    chosen.modify([](int& value) { value = 4; });
    mainLoop.run();
    EXPECT_EQ(runs, "1 3 4 ");
}

TEST_F(Observation, FollowsWhatTheLastRunRead)
{
    ObservationLoop loop{mainLoop, [&] { runs += std::to_string(chosen.get() > 1 ? other.get() : 0) + " "; }};
    other.set(11);
    EXPECT_EQ(mainLoop.run(), 0);
    chosen.set(2);
    mainLoop.run();
    other.set(12);
    mainLoop.run();
    EXPECT_EQ(runs, "0 11 12 ");
}

TEST_F(Observation, MayChangeWhatItReads)
{
    ObservationLoop loop{mainLoop, [&] {
                             runs += std::to_string(chosen.get()) + " ";
                             if (chosen.get() < 3)
                                 chosen.set(chosen.get() + 1);
                         }};
    mainLoop.run();
    EXPECT_EQ(runs, "1 2 3 ");
}

TEST_F(Observation, EndsWithTheLoopAlsoWhenARunIsDue)
{
    std::optional<ObservationLoop> loop;
    loop.emplace(mainLoop, [&] { runs += std::to_string(chosen.get()) + " "; });
    chosen.set(2);
    loop.reset();
    mainLoop.run();
    chosen.set(3);
    EXPECT_EQ(mainLoop.run(), 0);
    EXPECT_EQ(runs, "1 ");

    ObservationLoop stopped{mainLoop, [&] { runs += std::to_string(chosen.get()) + " "; }};
    chosen.set(4);
    stopped.stop();
    mainLoop.run();
    EXPECT_EQ(runs, "1 3 ");
}

TEST_F(Observation, NestedBlocksReadForThemselves)
{
    std::optional<ObservationLoop> inner;
    ObservationLoop outer{mainLoop, [&] {
                              runs += "outer ";
                              inner.emplace(mainLoop, [&] { runs += std::to_string(chosen.get()) + " "; });
                              other.get();
                          }};
    chosen.set(2);
    mainLoop.run();
    EXPECT_EQ(runs, "outer 1 2 ");
    other.set(11);
    mainLoop.run();
    EXPECT_EQ(runs, "outer 1 2 outer 2 ");
}

TEST_F(Observation, ValuesMayEndBeforeTheirReaders)
{
    auto shortLived = std::make_unique<Observed<int>>(1);
    ObservationLoop loop{mainLoop, [&] { runs += shortLived ? std::to_string(shortLived->get()) : "-"; }};
    shortLived.reset();
    EXPECT_EQ(mainLoop.run(), 0);
}

TEST_F(Observation, TheClockTicksAtWholeSecondsWhileSomebodyReadsIt)
{
    VirtualTime time;
    const ObservedClock clock{time, time};
    clock.now(time.now());
    EXPECT_EQ(time.pendingTasks(), 0U) << "not read inside a loop";
    const auto start = time.now();
    std::optional<ObservationLoop> loop;
    loop.emplace(mainLoop, [&] {
        const auto now = clock.now(start - 0.4s); // counted up
        EXPECT_EQ(clock.now(start + 3.3s), now) << "and down";
        runs += std::to_string(static_cast<int>((now - start).count() * 100 + 0.5)) + " ";
    });
    for (int turn = 0; turn < 30; ++turn) {
        time.advance(100ms);
        mainLoop.run();
    }
    EXPECT_EQ(runs, "0 40 70 140 170 240 270 ") << "just past what each of them counts";
    const ObservationLoop slower{mainLoop, [&] { clock.now(start, 1min); }};
    loop.reset();
    time.advance(2s);
    mainLoop.run();
    EXPECT_EQ(time.pendingTasks(), 1U);
    time.advance(1min);
    EXPECT_EQ(time.pendingTasks(), 0U) << "it has told of the minute";
    {
        const ObservationLoop brief{mainLoop, [&] { clock.now(time.now()); }};
        EXPECT_EQ(time.pendingTasks(), 1U);
    }
    EXPECT_EQ(time.pendingTasks(), 0U) << "nobody reads it any more";
}

} // namespace
