#pragma once

#include <chrono>
#include <memory>
#include <systemd/sd-bus.h>

namespace vespra {

struct BusClose {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
using BusConnection = std::unique_ptr<sd_bus, BusClose>;

/// Connects by `open`, such as sd_bus_open_system, and waits until the bus has welcomed the program; empty if it does
/// not within `limit`. A bus whose daemon hangs would make others wait for minutes.
BusConnection openBus(int (*open)(sd_bus** bus), std::chrono::milliseconds limit);

} // namespace vespra
