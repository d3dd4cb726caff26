#pragma once

#include <functional>

namespace vespra {

/// Follows the lid and the displays. Valid from construction on. Main thread only.
class LidMonitoring {
public:
    virtual ~LidMonitoring() = default;
    /// The lid is shut and no external display is attached: the last delivered reading.
    virtual bool isClosedWithoutExternalDisplay() const = 0;
    /// The lid right now, whatever displays there are; false where the machine has none.
    virtual bool isLidClosed() const = 0;
    /// Called on the main thread whenever `isClosedWithoutExternalDisplay` has changed.
    std::function<void(bool)> onChange;
};

} // namespace vespra
