#pragma once

#include "Core/Observation/Observed.h"

namespace vespra {

/// How the user wants to see windows.
struct Appearance {
    bool isDark = false;
    bool hasHighContrast = false;
    bool reducesMotion = false;
    bool operator==(const Appearance&) const = default;
};

/// Follows the appearance that the user has chosen for all applications. Main thread only.
class AppearanceMonitoring {
public:
    virtual ~AppearanceMonitoring() = default;

    /// The last reading; what the system does not tell is false. Followed by observation loops.
    const Appearance& current() const { return current_.get(); }

protected:
    void update(const Appearance& reading) { current_.set(reading); }

private:
    Observed<Appearance> current_;
};

} // namespace vespra
