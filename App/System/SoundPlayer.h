#pragma once

#include <functional>

namespace vespra {

/// The sound of the heat alarm, among the files that ship with the program.
inline constexpr auto heatAlarmSound = "sounds/heat-alarm.wav";

/// Plays the alarm that tells of a hot machine. Main thread only.
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;

    /// Plays it from its start, once; a play under way ends first. `completion` is called once, in a later turn: at the
    /// sound's end, after `stop`, or when it cannot be played, which is logged.
    virtual void play(std::function<void()> completion) = 0;
    virtual void stop() = 0;
};

} // namespace vespra
