#pragma once

#include "App/System/linux/BusProbe.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>

/// Questions to a bus, each answered within 2 s or not at all. None of them starts a service, and one that has not
/// answered in time is not asked again.
namespace vespra::doctor {

class Bus {
public:
    struct Object {
        const char* service;
        const char* path;
        const char* interface;
    };

    /// An answer, read from the front by sd-bus's own calls; nothing after a failure.
    class Answer {
    public:
        explicit Answer(sd_bus_message* message = nullptr)
            : message_{message}
        {
        }
        explicit operator bool() const { return message_ != nullptr; }
        sd_bus_message* message() const { return message_.get(); }
        /// The next text; empty if there is none.
        std::string text() const;

    private:
        struct Unref {
            void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
        };
        std::unique_ptr<sd_bus_message, Unref> message_;
    };

    static Bus system() { return Bus{sd_bus_open_system}; }
    static Bus session() { return Bus{sd_bus_open_user}; }

    bool isOpen() const { return bus_ != nullptr; }
    bool isOwned(const char* service) const;
    /// Whether the bus would start it.
    bool isActivatable(const std::string& service) const;
    /// The process that owns `service`; absent if none does.
    std::optional<long> owner(const char* service) const;

    std::optional<bool> flag(const Object& object, const char* property) const;
    std::optional<std::string> text(const Object& object, const char* property) const;
    std::optional<double> number(const Object& object, const char* property) const;
    std::optional<std::uint32_t> count(const Object& object, const char* property) const;

    /// `arguments` as sd-bus takes them for `types`.
    template <class... Arguments>
    Answer ask(const Object& object, const char* method, const char* types = "", Arguments... arguments) const
    {
        auto question = newQuestion(object, method);
        if (!question || sd_bus_message_append(question.message(), types, arguments...) < 0)
            return Answer{};
        return answer(object.service, question);
    }

private:
    explicit Bus(int (*open)(sd_bus**));

    Answer newQuestion(const Object& object, const char* method) const;
    Answer answer(const char* service, const Answer& question) const;
    template <class Value> std::optional<Value> property(const Object& object, const char* name, char type) const;

    BusConnection bus_;
    mutable std::set<std::string> silent_;
};

} // namespace vespra::doctor
