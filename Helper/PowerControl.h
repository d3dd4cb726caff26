#pragma once

#include "Helper/SleepSetting.h"

namespace vespra {

/// What the daemon does to the computer besides the setting.
class PowerControl {
public:
    virtual ~PowerControl() = default;
    /// Refused while another program holds the system awake.
    virtual HelperResult suspend() = 0;
    virtual HelperResult powerOff() = 0;
    /// The lid is shut, no external display is attached, and the system is meant to sleep then.
    virtual bool shouldSleepForLid() = 0;
};

} // namespace vespra
