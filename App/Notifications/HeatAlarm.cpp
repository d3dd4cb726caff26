#include "App/Notifications/HeatAlarm.h"

#include "Core/Scheduling/MainThread.h"

namespace vespra {

HeatAlarm::HeatAlarm(SoundPlayer& player, TaskScheduling& tasks)
    : player_{player}
    , tasks_{tasks}
{
}

HeatAlarm::~HeatAlarm()
{
    if (task_)
        player_.stop();
}

void HeatAlarm::play(std::function<void()> completion)
{
    mainThread::check();
    const int play = ++play_;
    task_ = tasks_.schedule(longest, [this] { player_.stop(); });
    player_.play(lifetime_.guard([this, play, completion = std::move(completion)] {
        // A play that another has interrupted must not cancel the other's time limit.
        if (play == play_)
            task_.reset();
        notify(completion);
    }));
}

} // namespace vespra
