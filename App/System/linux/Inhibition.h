#pragma once

#include <string>

namespace vespra {

/// One way of keeping something awake, held exactly while it is wanted: taken as soon as the service that grants it is
/// there, taken again when that changes hands, at most once at any time. Main thread only.
class Inhibition {
public:
    virtual ~Inhibition() = default;
    /// `why` is shown to the user by the service.
    virtual void hold(const std::string& why) = 0;
    virtual void drop() = 0;
    /// Takes what is wanted and not held: after the computer has slept.
    virtual void verify() = 0;
};

} // namespace vespra
