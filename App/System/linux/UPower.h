#pragma once

#include "App/System/linux/DBus.h"
#include "App/System/linux/UPowerReading.h"

namespace vespra {

/// UPower's view of the machine. While it does not answer, `answers` is false and it knows nothing.
class UPower {
public:
    /// Waits for the first answer, at most about one second.
    UPower();

    /// Listeners are called after any change; they stay as long as this.
    void onChange(std::function<void()> listener) { listeners_.push_back(std::move(listener)); }
    void refresh();

    bool answers() const { return daemon_.areKnown() && battery_.areKnown(); }
    UPowerReading reading() const;
    /// Absent if UPower does not say; false on a machine without a lid.
    std::optional<bool> isLidClosed() const;

private:
    void changed() const;

    std::vector<std::function<void()>> listeners_;
    dbus::Properties daemon_;
    dbus::Properties battery_;
};

} // namespace vespra
