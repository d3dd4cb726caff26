#pragma once

#include <expected>
#include <string>

namespace vespra {

/// Nothing, or a sentence for the log.
using HelperResult = std::expected<void, std::string>;

/// The system's disable-sleep setting. While it is on, neither a closed lid nor anything else puts the system to sleep.
class SleepSetting {
public:
    virtual ~SleepSetting() = default;
    virtual std::expected<bool, std::string> isSleepDisabled() = 0;
    /// Setting the value there is does nothing.
    virtual HelperResult setSleepDisabled(bool disabled) = 0;
};

} // namespace vespra
