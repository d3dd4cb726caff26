#pragma once

#include "Core/Scheduling/Instant.h"

#include <algorithm>

namespace vespra {

/// How long the sleep override lives without a sign of life from the application. `Moment` is an instant of a clock
/// that never goes back and counts while the computer sleeps.
template <class Moment> class ClosedLidLease {
public:
    /// How long one renewal keeps the override alive: two missed heartbeats and 5 s to spare.
    static constexpr Seconds defaultTimeout = 25s;
    static constexpr Seconds heartbeatInterval = 10s;

    explicit ClosedLidLease(Moment start, Seconds timeout = defaultTimeout)
        : timeout_{timeout}
        , lastRenewal_{start}
    {
    }

    Moment expiresAt() const { return lastRenewal_ + timeout_; }
    /// A renewal never moves the lease back.
    void renew(Moment at) { lastRenewal_ = std::max(lastRenewal_, at); }
    /// At `expiresAt` the lease has expired.
    bool isExpired(Moment at) const { return at >= expiresAt(); }

private:
    Seconds timeout_;
    Moment lastRenewal_;
};

} // namespace vespra
