#pragma once

#include "Helper/linux/EventLoop.h"

#include <systemd/sd-bus.h>

namespace vespra {

using Bus = std::unique_ptr<sd_bus, Unref<sd_bus_flush_close_unref>>;
using BusSlot = std::unique_ptr<sd_bus_slot, Unref<sd_bus_slot_unref>>;
using BusMessage = std::unique_ptr<sd_bus_message, Unref<sd_bus_message_unref>>;

/// An error of the bus, freed at the end.
struct BusError {
    BusError() = default;
    ~BusError() { sd_bus_error_free(&error); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    /// What the other side said, or what went wrong on the way.
    std::string description(int result) const { return error.message ? error.message : systemError(result); }

    sd_bus_error error = SD_BUS_ERROR_NULL;
};

} // namespace vespra
