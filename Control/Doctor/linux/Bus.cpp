#include "Control/Doctor/linux/Bus.h"

#include <cstdlib>

namespace vespra::doctor {

namespace {

    constexpr std::chrono::seconds limit{2};

    constexpr Bus::Object daemon{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};

} // namespace

Bus::Bus(int (*open)(sd_bus**))
    : bus_{openBus(open, limit)}
{
    if (bus_)
        sd_bus_set_method_call_timeout(bus_.get(), std::chrono::microseconds{limit}.count());
}

bool Bus::isOwned(const char* service) const
{
    if (!bus_)
        return false;
    sd_bus_message* reply = nullptr;
    int owned = 0;
    if (sd_bus_call_method(
            bus_.get(), daemon.service, daemon.path, daemon.interface, "NameHasOwner", nullptr, &reply, "s", service)
        >= 0)
        sd_bus_message_read(reply, "b", &owned);
    sd_bus_message_unref(reply);
    return owned != 0;
}

bool Bus::isActivatable(const std::string& service) const
{
    if (!bus_)
        return false;
    char** names = nullptr;
    if (sd_bus_list_names(bus_.get(), nullptr, &names) < 0)
        return false;
    bool found = false;
    for (char** name = names; name && *name; ++name) {
        found = found || service == *name;
        std::free(*name);
    }
    std::free(static_cast<void*>(names));
    return found;
}

std::optional<bool> Bus::flag(const Object& object, const char* property) const
{
    int value = 0;
    if (!bus_
        || sd_bus_get_property_trivial(
               bus_.get(), object.service, object.path, object.interface, property, nullptr, 'b', &value)
            < 0)
        return {};
    return value != 0;
}

std::optional<double> Bus::number(const Object& object, const char* property) const
{
    double value = 0;
    if (!bus_
        || sd_bus_get_property_trivial(
               bus_.get(), object.service, object.path, object.interface, property, nullptr, 'd', &value)
            < 0)
        return {};
    return value;
}

std::optional<std::uint32_t> Bus::count(const Object& object, const char* property) const
{
    std::uint32_t value = 0;
    if (!bus_
        || sd_bus_get_property_trivial(
               bus_.get(), object.service, object.path, object.interface, property, nullptr, 'u', &value)
            < 0)
        return {};
    return value;
}

std::optional<std::string> Bus::text(const Object& object, const char* property) const
{
    char* value = nullptr;
    if (!bus_
        || sd_bus_get_property_string(
               bus_.get(), object.service, object.path, object.interface, property, nullptr, &value)
            < 0)
        return {};
    std::string copy{value};
    std::free(value);
    return copy;
}

std::string Bus::Answer::text() const
{
    const char* value = nullptr;
    if (!message || sd_bus_message_read(message, "s", &value) <= 0)
        return {};
    return value;
}

void Bus::call(const Object& object, const char* method, Answer& answer) const
{
    if (bus_)
        sd_bus_call_method(
            bus_.get(), object.service, object.path, object.interface, method, nullptr, &answer.message, nullptr);
}

void Bus::call(const Object& object, const char* method, std::uint32_t argument, Answer& answer) const
{
    if (bus_)
        sd_bus_call_method(
            bus_.get(), object.service, object.path, object.interface, method, nullptr, &answer.message, "u", argument);
}

} // namespace vespra::doctor
