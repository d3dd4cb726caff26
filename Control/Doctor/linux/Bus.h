#pragma once

#include "App/System/linux/BusProbe.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Questions to a bus, each answered within 2 s or not at all.
namespace vespra::doctor {

class Bus {
public:
    struct Object {
        const char* service;
        const char* path;
        const char* interface;
    };

    static Bus system() { return Bus{sd_bus_open_system}; }
    static Bus session() { return Bus{sd_bus_open_user}; }
    bool isOwned(const char* service) const;
    /// Whether the bus would start it.
    bool isActivatable(const std::string& service) const;

    std::optional<bool> flag(const Object& object, const char* property) const;
    std::optional<std::string> text(const Object& object, const char* property) const;
    std::optional<double> number(const Object& object, const char* property) const;
    std::optional<std::uint32_t> count(const Object& object, const char* property) const;

    /// An answer, read from the front by sd-bus's own calls; nothing after a failure.
    struct Answer {
        sd_bus_message* message = nullptr;

        Answer() = default;
        Answer(const Answer&) = delete;
        Answer& operator=(const Answer&) = delete;
        ~Answer() { sd_bus_message_unref(message); }
        explicit operator bool() const { return message != nullptr; }
        /// The next text; empty if there is none.
        std::string text() const;
    };
    void call(const Object& object, const char* method, Answer& answer) const;
    void call(const Object& object, const char* method, std::uint32_t argument, Answer& answer) const;

private:
    explicit Bus(int (*open)(sd_bus**));

    BusConnection bus_;
};

} // namespace vespra::doctor
