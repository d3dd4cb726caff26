#include "Helper/linux/EventLoop.h"

#include <gtest/gtest.h>
#include <thread>

namespace vespra {

namespace {

    TEST(EventTaskScheduler, WaitsFromTheCallOnHoweverLongTheTurnHasTakenByThen)
    {
        sd_event* made = nullptr;
        ASSERT_GE(sd_event_new(&made), 0);
        const Event event{made};
        EventTaskScheduler tasks{*event};
        std::unique_ptr<ScheduledTask> second;
        Seconds waited{};
        const auto first = tasks.schedule(0s, [&] {
            std::this_thread::sleep_for(100ms);
            second = tasks.schedule(20ms, [&, asked = tasks.continuousNow()] {
                waited = tasks.continuousNow() - asked;
                sd_event_exit(event.get(), 0);
            });
        });
        ASSERT_GE(sd_event_loop(event.get()), 0);
        EXPECT_GE(waited, 20ms);
    }

} // namespace

} // namespace vespra
