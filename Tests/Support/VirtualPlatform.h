#pragma once

#include "App/Model/UserDefaults.h"
#include "App/System/simulated/VirtualLaptop.h"

#include <map>
#include <stdexcept>

namespace vespra {

/// A virtual laptop that is changed and looked at in words.
class VirtualPlatform : public VirtualLaptop {
public:
    /// Changes the laptop and lets the application notice.
    void set(const MachineSettings& settings)
    {
        if (const auto done = machine().set(settings); !done)
            throw std::runtime_error{done.error()};
        settle();
    }

    /// The types of what holds the laptop awake, in order.
    std::string held()
    {
        std::string types;
        for (const auto& [id, assertion] : machine().assertions())
            types += (types.empty() ? "" : " ") + assertion.type;
        return types;
    }
    /// The identifiers of the notifications on the screen, in order.
    std::string shown()
    {
        std::string identifiers;
        for (const auto& notification : machine().notifications())
            identifiers += (identifiers.empty() ? "" : " ") + notification.identifier;
        return identifiers;
    }
};

/// Defaults in memory.
class MemoryDefaults final : public UserDefaults {
public:
    std::optional<std::string> data(std::string_view key) const override { return value(texts, key); }
    std::optional<bool> boolean(std::string_view key) const override { return value(flags, key); }
    void setData(std::string_view key, std::string_view data) override { texts[std::string{key}] = data; }
    void setBoolean(std::string_view key, bool flag) override { flags[std::string{key}] = flag; }

    std::map<std::string, std::string> texts;
    std::map<std::string, bool> flags;

private:
    template <class Value>
    static std::optional<Value> value(const std::map<std::string, Value>& values, std::string_view key)
    {
        const auto found = values.find(std::string{key});
        return found == values.end() ? std::nullopt : std::optional{found->second};
    }
};

} // namespace vespra
