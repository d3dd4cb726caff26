#include "App/System/linux/TimerfdScheduler.h"

#include "Core/Scheduling/WallClock.h"
#include "Tests/Support/QtApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;

    /// Against the real clocks. Nothing here measures time: it asks what fires at all, in which order, and never early.
    class TimerfdScheduler : public testing::Test {
    protected:
        using Name = std::string;

        static Instant now() { return SystemClock{}.now(); }

        auto note(Name name)
        {
            return [this, name = std::move(name)] { fired.push_back(name); };
        }
        /// Takes turns until `count` have fired.
        void waitFor(std::size_t count)
        {
            QtApplication::runUntil([&] { return fired.size() >= count; });
        }
        /// Takes turns until 50 ms have passed.
        void goOn()
        {
            bool isOver = false;
            const auto end = tasks.schedule(50ms, [&] { isOver = true; });
            QtApplication::runUntil([&] { return isOver; });
        }

        QtApplication application;
        TimerfdDeadlineScheduler deadlines;
        TimerfdTaskScheduler tasks;
        std::vector<Name> fired;
    };

} // namespace

TEST_F(TimerfdScheduler, FiresAPastDateAtOnceButNotWithinTheCallNorTheTurn)
{
    std::unique_ptr<ScheduledDeadline> again;
    const auto past = deadlines.schedule(now() - 1h, [&] {
        fired.emplace_back("past");
        again = deadlines.schedule(now() - 2h, note("again"));
    });
    const auto later = deadlines.schedule(now() - 30min, note("later"));
    const auto before1970 = deadlines.schedule(Instant{} - 1h, note("before 1970"));
    EXPECT_THAT(fired, IsEmpty());
    waitFor(4);
    goOn();
    EXPECT_THAT(fired, ElementsAre("before 1970", "past", "later", "again"));
}

TEST_F(TimerfdScheduler, FiresInTheOrderOfDatesAndNeverEarly)
{
    const auto start = now();
    const auto last = deadlines.schedule(start + 30ms, note("last"));
    const auto first = deadlines.schedule(start + 10ms, note("first"));
    const auto second = deadlines.schedule(start + 20ms, [&] {
        EXPECT_GE(now(), start + 20ms);
        fired.emplace_back("second");
    });
    const auto never = deadlines.schedule(start + 1000 * 24h, note("in years"));
    const auto beyondRange = deadlines.schedule(Instant{std::chrono::nanoseconds::max()}, note("at the end of time"));
    waitFor(3);
    EXPECT_THAT(fired, ElementsAre("first", "second", "last"));
}

TEST_F(TimerfdScheduler, NeverFiresWhatWasCancelledOrReleased)
{
    const auto cancelled = deadlines.schedule(now(), note("cancelled"));
    auto released = deadlines.schedule(now(), note("released"));
    const auto task = tasks.schedule(0s, note("cancelled task"));
    cancelled->cancel();
    cancelled->cancel();
    released.reset();
    task->cancel();
    goOn();
    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(TimerfdScheduler, LetsAnActionEndHandlesAndScheduleAgain)
{
    std::unique_ptr<ScheduledTask> own, other, next;
    own = tasks.schedule(0s, [&] {
        own.reset();
        other.reset();
        next = tasks.schedule(0s, note("next"));
        EXPECT_THAT(fired, IsEmpty());
    });
    other = tasks.schedule(0s, note("other, due at the same time"));
    waitFor(1);
    goOn();
    EXPECT_THAT(fired, ElementsAre("next"));
}

TEST_F(TimerfdScheduler, OutlivesItsHandlesAndTheOtherWayRound)
{
    auto scheduler = std::make_unique<TimerfdTaskScheduler>();
    const auto orphan = scheduler->schedule(0s, note("orphan"));
    std::unique_ptr<ScheduledTask> last;
    last = scheduler->schedule(0s, [&] { scheduler.reset(); });
    scheduler->schedule(0s, note("released"));
    QtApplication::runUntil([&] { return !scheduler; });
    orphan->cancel();
    goOn();
    EXPECT_THAT(fired, ElementsAre("orphan"));
}

} // namespace vespra
