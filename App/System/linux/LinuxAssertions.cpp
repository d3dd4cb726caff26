#include "App/System/linux/LinuxAssertions.h"

namespace vespra {

std::expected<std::uint32_t, int> LinuxAssertions::create(PowerAssertionType type, const std::string& name)
{
    for (const auto& inhibition : inhibitions_[type])
        inhibition->hold(name);
    return id(type);
}

void LinuxAssertions::release(std::uint32_t released)
{
    for (const auto& [type, inhibitions] : inhibitions_)
        if (id(type) == released)
            for (const auto& inhibition : inhibitions)
                inhibition->drop();
}

void LinuxAssertions::verify()
{
    for (const auto& [type, inhibitions] : inhibitions_)
        for (const auto& inhibition : inhibitions)
            inhibition->verify();
}

} // namespace vespra
