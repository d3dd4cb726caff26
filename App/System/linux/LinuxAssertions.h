#pragma once

#include "App/System/linux/Inhibition.h"
#include "App/System/PowerAssertionBackend.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace vespra {

/// Carries the assertions out by inhibitions. Two assertions may share one, which is then held while either is. There
/// is no activity to hold: nothing throttles a process here.
class LinuxAssertions final : public PowerAssertionBackend {
public:
    struct Means {
        std::set<PowerAssertionType> serves;
        std::unique_ptr<Inhibition> inhibition;
    };

    explicit LinuxAssertions(std::vector<Means> means)
        : means_{std::move(means)}
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
    void reconcile();

    std::vector<Means> means_;
    /// The name of each assertion that is held.
    std::map<PowerAssertionType, std::string> held_;
};

} // namespace vespra
