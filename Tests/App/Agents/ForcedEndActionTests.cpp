#include "App/Agents/ForcedEndAction.h"

#include "Core/Scheduling/VirtualTime.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using Pending = ForcedEndAction::Pending;
    using testing::ElementsAre;
    using testing::IsEmpty;

    struct ForcedEndActionTest : testing::Test {
        ForcedEndActionTest()
        {
            action.perform = [this](AgentEndAction performed) { done.push_back(performed); };
            action.onCancel = [this] { ++cancelled; };
        }
        VirtualTime time;
        ForcedEndAction action{time, time};
        std::vector<AgentEndAction> done;
        int cancelled = 0;
    };

    TEST_F(ForcedEndActionTest, TheLatestAloneIsCarriedOutAfterAMinute)
    {
        action.schedule(AgentEndAction::shutDown, time.now());
        time.advance(30s);
        action.schedule(AgentEndAction::sleepNow, time.now());
        action.schedule(AgentEndAction::letSleep, time.now());
        EXPECT_EQ(action.pending(), (Pending{AgentEndAction::sleepNow, time.now() + 60s}));
        time.advance(59.9s);
        EXPECT_THAT(done, IsEmpty());
        time.advance(0.1s);
        EXPECT_THAT(done, ElementsAre(AgentEndAction::sleepNow));
        EXPECT_FALSE(action.pending());
        EXPECT_EQ(cancelled, 0);

        done.clear();
        action.schedule(AgentEndAction::shutDown, time.now());
        time.advance(59s);
        action.cancel();
        time.advance(1h);
        EXPECT_THAT(done, IsEmpty());
        EXPECT_EQ(cancelled, 1);
    }

    TEST_F(ForcedEndActionTest, AMinuteIsAMinuteAwake)
    {
        std::vector<AgentEndAction> postponed;
        action.onPostpone = [&](AgentEndAction what) { postponed.push_back(what); };
        for (const Seconds before : {0s, 7s, 58s}) { // of the sleep, which ends within the minute, or after it
            SCOPED_TRACE(before.count());
            for (const auto what : {AgentEndAction::sleepNow, AgentEndAction::shutDown}) {
                action.schedule(what, time.now());
                time.advance(before);
                time.sleep(before < 50s ? 40s : 1h);
                EXPECT_EQ(action.pending().has_value(), what == AgentEndAction::shutDown) << "it has slept";
                time.advance(59.5s);
                EXPECT_THAT(done, IsEmpty());
            }
            time.advance(0.5s);
            EXPECT_THAT(std::exchange(done, {}), ElementsAre(AgentEndAction::shutDown));
        }
        EXPECT_EQ(cancelled, 3);
        EXPECT_EQ(postponed.size(), 3u);
    }

} // namespace

} // namespace vespra
