#include "App/System/linux/BusProbe.h"

namespace vespra {

BusConnection openBus(int (*open)(sd_bus** bus), std::chrono::milliseconds limit)
{
    using Clock = std::chrono::steady_clock;
    sd_bus* opened = nullptr;
    if (open(&opened) < 0)
        return {};
    BusConnection bus{opened};
    const auto deadline = Clock::now() + limit;
    while (sd_bus_is_ready(bus.get()) == 0) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
        const int processed = sd_bus_process(bus.get(), nullptr);
        if (processed < 0 || left.count() <= 0
            || (processed == 0 && sd_bus_wait(bus.get(), static_cast<std::uint64_t>(left.count())) < 0)) {
            sd_bus_close(bus.get()); // without waiting for what is on its way
            return {};
        }
    }
    return bus;
}

} // namespace vespra
