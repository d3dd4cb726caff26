#include "App/Notifications/HeatAlarm.h"
#include "App/System/simulated/SimulatedNotifications.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"

#include <gmock/gmock.h>

#include <optional>

namespace vespra {

namespace {

    using testing::ElementsAre;

    class Alarm : public testing::Test {
    protected:
        std::function<void()> saying(std::string text)
        {
            return [this, text = std::move(text)] { told.push_back(text); };
        }
        void advance(VirtualTime& clock, Seconds by)
        {
            clock.advance(by);
            mainLoop.run();
        }
        bool isSounding() const { return soundTime.pendingTasks() != 0; }

        /// A sound lasts for 1.6 s of its own time: for ever while that stands still.
        VirtualTime time, soundTime;
        ManualMainLoop mainLoop;
        std::shared_ptr<SimulatedMachine> machine = std::make_shared<SimulatedMachine>();
        SimulatedAlarm player{machine, mainLoop, soundTime};
        std::optional<HeatAlarm> alarm{std::in_place, player, time};
        std::vector<std::string> told;
    };

} // namespace

TEST_F(Alarm, EndsWithTheSoundAndLeavesNothingPending)
{
    alarm->play(saying("done"));
    advance(soundTime, 1599ms);
    EXPECT_THAT(told, ElementsAre());
    soundTime.advance(1ms);
    EXPECT_THAT(told, ElementsAre()) << "not in a later turn";
    mainLoop.run();
    EXPECT_THAT(told, ElementsAre("done"));
    EXPECT_EQ(time.pendingTasks(), 0U);
    alarm->play({});
    advance(soundTime, 10s);
    EXPECT_EQ(machine->alarms(), 2);
    EXPECT_THAT(told, ElementsAre("done"));
}

TEST_F(Alarm, IsStoppedFiveSecondsAfterItWasPlayedLast)
{
    alarm->play(saying("first"));
    advance(time, 4s);
    alarm->play(saying("second"));
    advance(time, 4999ms);
    EXPECT_THAT(told, ElementsAre("first"));
    EXPECT_TRUE(isSounding()) << "the limit of the first is over";
    advance(time, 1ms);
    EXPECT_THAT(told, ElementsAre("first", "second"));
    EXPECT_FALSE(isSounding()) << "the end of the first took the limit of the second along";
}

TEST_F(Alarm, FallsSilentWithItsOwner)
{
    alarm->play(saying("done"));
    alarm.reset();
    EXPECT_FALSE(isSounding());
    advance(time, 1h);
    EXPECT_THAT(told, ElementsAre());
}

} // namespace vespra
