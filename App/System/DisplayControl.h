#pragma once

#include <expected>
#include <functional>
#include <string>

namespace vespra {

/// Turns the display off and wakes it. Main thread only; nothing here waits for the display.
class DisplayControl {
public:
    virtual ~DisplayControl() = default;

    /// Starts turning the display off. Fails with a description if even that was impossible.
    virtual std::expected<void, std::string> turnOff() = 0;
    /// Wakes the display; `name` is told to the system as the reason. Fails with the system's code.
    virtual std::expected<void, int> wake(const std::string& name) = 0;
    /// Called when the display has come on by whatever means, while `watchesWaking`.
    std::function<void()> onScreensWake;
    /// Whether `onScreensWake` is needed: on systems that do not announce it, polling costs wake-ups.
    virtual void setWatchesWaking(bool watches) = 0;
};

} // namespace vespra
