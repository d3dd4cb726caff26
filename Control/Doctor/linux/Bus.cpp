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
}

Bus::Answer Bus::newQuestion(const Object& object, const char* method) const
{
    sd_bus_message* question = nullptr;
    if (!bus_ || silent_.contains(object.service)
        || sd_bus_message_new_method_call(bus_.get(), &question, object.service, object.path, object.interface, method)
            < 0)
        return Answer{};
    sd_bus_message_set_auto_start(question, 0);
    return Answer{question};
}

Bus::Answer Bus::answer(const char* service, const Answer& question) const
{
    sd_bus_message* reply = nullptr;
    const int result
        = sd_bus_call(bus_.get(), question.message(), std::chrono::microseconds{limit}.count(), nullptr, &reply);
    if (result == -ETIMEDOUT)
        silent_.insert(service);
    return Answer{result < 0 ? nullptr : reply};
}

bool Bus::isOwned(const char* service) const
{
    int owned = 0;
    if (const auto reply = ask(daemon, "NameHasOwner", "s", service))
        sd_bus_message_read(reply.message(), "b", &owned);
    return owned != 0;
}

bool Bus::isActivatable(const std::string& service) const
{
    const auto reply = ask(daemon, "ListActivatableNames");
    if (!reply || sd_bus_message_enter_container(reply.message(), 'a', "s") < 0)
        return false;
    for (const char* name = nullptr; sd_bus_message_read(reply.message(), "s", &name) > 0;)
        if (service == name)
            return true;
    return false;
}

std::optional<long> Bus::owner(const char* service) const
{
    std::uint32_t pid = 0;
    const auto reply = ask(daemon, "GetConnectionUnixProcessID", "s", service);
    if (!reply || sd_bus_message_read(reply.message(), "u", &pid) <= 0)
        return {};
    return pid;
}

template <class Value> std::optional<Value> Bus::property(const Object& object, const char* name, char type) const
{
    const Object properties{object.service, object.path, "org.freedesktop.DBus.Properties"};
    const char contents[]{type, '\0'};
    const auto reply = ask(properties, "Get", "ss", object.interface, name);
    Value value{};
    if (!reply || sd_bus_message_enter_container(reply.message(), 'v', contents) <= 0
        || sd_bus_message_read_basic(reply.message(), type, &value) <= 0)
        return {};
    return value;
}

std::optional<bool> Bus::flag(const Object& object, const char* name) const
{
    const auto value = property<int>(object, name, 'b');
    return value ? std::optional{*value != 0} : std::nullopt;
}

std::optional<double> Bus::number(const Object& object, const char* name) const
{
    return property<double>(object, name, 'd');
}

std::optional<std::uint32_t> Bus::count(const Object& object, const char* name) const
{
    return property<std::uint32_t>(object, name, 'u');
}

std::optional<std::string> Bus::text(const Object& object, const char* name) const
{
    const Object properties{object.service, object.path, "org.freedesktop.DBus.Properties"};
    const auto reply = ask(properties, "Get", "ss", object.interface, name);
    if (!reply || sd_bus_message_enter_container(reply.message(), 'v', "s") <= 0)
        return {};
    return reply.text();
}

std::string Bus::Answer::text() const
{
    const char* value = nullptr;
    if (!message_ || sd_bus_message_read(message(), "s", &value) <= 0)
        return {};
    return value;
}

} // namespace vespra::doctor
