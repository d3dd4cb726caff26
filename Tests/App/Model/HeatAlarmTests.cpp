#include "App/Model/HeatAlarm.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/ManualMainLoop.h"

#include <gmock/gmock.h>

#include <optional>

namespace vespra {

namespace {

    using testing::ElementsAre;

    /// Sounds for a given time, or until it is stopped.
    class FakeSoundPlayer final : public SoundPlayer {
    public:
        FakeSoundPlayer(TaskScheduling& time, MainLoop& mainLoop)
            : time_{time}
            , mainLoop_{mainLoop}
        {
        }
        void play(std::function<void()> completion) override
        {
            stop();
            ++plays;
            completion_ = std::move(completion);
            end_ = time_.schedule(length, [this] { stop(); });
        }
        void stop() override
        {
            if (std::exchange(end_, nullptr))
                mainLoop_.post(std::exchange(completion_, nullptr));
        }
        bool isPlaying() const { return end_ != nullptr; }

        Seconds length = 1500ms;
        int plays = 0;

    private:
        TaskScheduling& time_;
        MainLoop& mainLoop_;
        std::function<void()> completion_;
        std::unique_ptr<ScheduledTask> end_;
    };

    class Alarm : public testing::Test {
    protected:
        std::function<void()> saying(std::string text)
        {
            return [this, text = std::move(text)] { told.push_back(text); };
        }
        void advance(Seconds by)
        {
            time.advance(by);
            mainLoop.run();
        }

        VirtualTime time;
        ManualMainLoop mainLoop;
        FakeSoundPlayer player{time, mainLoop};
        std::optional<HeatAlarm> alarm{std::in_place, player, time};
        std::vector<std::string> told;
    };

} // namespace

TEST_F(Alarm, EndsWithTheSoundAndLeavesNothingPending)
{
    alarm->play(saying("done"));
    advance(1499ms);
    EXPECT_THAT(told, ElementsAre());
    advance(1ms);
    EXPECT_THAT(told, ElementsAre("done"));
    EXPECT_EQ(time.pendingTasks(), 0U);
    alarm->play({});
    advance(10s);
    EXPECT_EQ(player.plays, 2);
    EXPECT_THAT(told, ElementsAre("done"));
}

TEST_F(Alarm, IsStoppedAfterFiveSeconds)
{
    player.length = 1h;
    alarm->play(saying("done"));
    advance(4999ms);
    EXPECT_TRUE(player.isPlaying());
    advance(1ms);
    EXPECT_FALSE(player.isPlaying());
    EXPECT_THAT(told, ElementsAre("done"));
}

TEST_F(Alarm, BeginsAnewWithItsFullTimeWhenPlayedAgain)
{
    player.length = 1h;
    alarm->play(saying("first"));
    advance(4s);
    alarm->play(saying("second"));
    EXPECT_EQ(player.plays, 2);
    advance(4999ms);
    EXPECT_THAT(told, ElementsAre("first"));
    EXPECT_TRUE(player.isPlaying()) << "the limit of the first is over";
    advance(1ms);
    EXPECT_THAT(told, ElementsAre("first", "second"));
    EXPECT_FALSE(player.isPlaying()) << "the end of the first took the limit of the second along";
}

TEST_F(Alarm, FallsSilentWithItsOwner)
{
    alarm->play(saying("done"));
    alarm.reset();
    EXPECT_FALSE(player.isPlaying());
    advance(1h);
    EXPECT_THAT(told, ElementsAre());
}

} // namespace vespra
