#pragma once

#include "Core/RawValue.h"

#include <cstdint>
#include <expected>
#include <string>

namespace vespra {

/// What an assertion prevents while the user is away: the system's sleep, or that of the display.
enum class PowerAssertionType { preventUserIdleSystemSleep, preventUserIdleDisplaySleep };

template <>
inline constexpr auto rawValues<PowerAssertionType> = RawValueTable<PowerAssertionType, 2>{{
    {PowerAssertionType::preventUserIdleSystemSleep, "PreventUserIdleSystemSleep"},
    {PowerAssertionType::preventUserIdleDisplaySleep, "PreventUserIdleDisplaySleep"},
}};

/// What a system offers to stay awake. Whatever is held goes with the process, also when that is killed.
/// Main thread only.
class PowerAssertionBackend {
public:
    virtual ~PowerAssertionBackend() = default;

    /// Keeps the system from throttling the application between this and `endActivity`; at most one at a time.
    virtual void beginActivity(const std::string& reason) = 0;
    virtual void endActivity() = 0;

    /// Asserts `type` under `name` until its release. Fails with the system's code. Where the system answers later,
    /// this succeeds at once, and the backend takes the assertion again by itself whenever it is lost.
    virtual std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string& name) = 0;
    virtual void release(std::uint32_t id) = 0;
};

} // namespace vespra
