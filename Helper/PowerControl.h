#pragma once

#include "Helper/SleepSetting.h"

namespace vespra {

/// What the daemon does to the computer besides the setting.
class PowerControl {
public:
    virtual ~PowerControl() = default;
    /// Fails when `suspend` is bound to be refused, whatever the setting is: while another program holds the system
    /// awake, say. Changes nothing.
    virtual HelperResult canSuspend() = 0;
    /// Refused while another program holds the system awake.
    virtual HelperResult suspend() = 0;
    virtual HelperResult powerOff() = 0;
    /// The lid is shut, no external display is attached, the system is meant to sleep then, and no other program wants
    /// the lid ignored.
    virtual bool shouldSleepForLid() = 0;
};

} // namespace vespra
