#include "App/System/linux/LinuxAssertions.h"

#include <algorithm>

namespace vespra {

std::expected<std::uint32_t, int> LinuxAssertions::create(PowerAssertionType type, const std::string& name)
{
    held_[type] = name;
    reconcile();
    return static_cast<std::uint32_t>(type);
}

void LinuxAssertions::release(std::uint32_t id)
{
    held_.erase(static_cast<PowerAssertionType>(id));
    reconcile();
}

void LinuxAssertions::verify()
{
    for (const auto& means : means_)
        means.inhibition->verify();
}

void LinuxAssertions::reconcile()
{
    for (const auto& [serves, inhibition] : means_) {
        const auto reason
            = std::ranges::find_if(held_, [&serves](const auto& each) { return serves.contains(each.first); });
        if (reason == held_.end())
            inhibition->drop();
        else
            inhibition->hold(reason->second);
    }
}

} // namespace vespra
