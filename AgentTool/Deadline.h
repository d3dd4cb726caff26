#pragma once

#include <algorithm>
#include <chrono>

namespace vespra {

/// A moment up to which a program may wait.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds fromNow)
        : moment_{std::chrono::steady_clock::now() + fromNow}
    {
    }

    /// In milliseconds, rounded up, as `poll` takes it; 0 once the moment has passed.
    int remaining() const
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(moment_ - std::chrono::steady_clock::now());
        return std::max(0, static_cast<int>(left.count()));
    }
    bool hasPassed() const { return remaining() == 0; }

private:
    std::chrono::steady_clock::time_point moment_;
};

} // namespace vespra
