#pragma once

#include "App/System/linux/Inhibition.h"
#include "App/System/PowerAssertionBackend.h"

#include <map>
#include <memory>
#include <vector>

namespace vespra {

/// Carries each assertion out by all the inhibitions that belong to it. There is no activity to hold: nothing throttles
/// a process here.
class LinuxAssertions final : public PowerAssertionBackend {
public:
    using Inhibitions = std::map<PowerAssertionType, std::vector<std::unique_ptr<Inhibition>>>;

    explicit LinuxAssertions(Inhibitions inhibitions)
        : inhibitions_{std::move(inhibitions)}
    {
    }

    void beginActivity(const std::string&) override { }
    void endActivity() override { }
    /// Takes the inhibitions that are there; the others follow when their services come. Never fails.
    std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string& name) override;
    void release(std::uint32_t id) override;
    /// Takes again what was lost while the computer slept.
    void verify();

private:
    static std::uint32_t id(PowerAssertionType type) { return static_cast<std::uint32_t>(type) + 1; }

    Inhibitions inhibitions_;
};

} // namespace vespra
