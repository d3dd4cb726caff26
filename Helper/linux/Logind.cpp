#include "Helper/linux/Logind.h"

#include "HelperProtocol/Brand.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>
#include <utility>

namespace vespra {

namespace {

    constexpr auto service = "org.freedesktop.login1";
    constexpr auto path = "/org/freedesktop/login1";
    constexpr auto interface = "org.freedesktop.login1.Manager";
    constexpr auto sessionInterface = "org.freedesktop.login1.Session";

    /// "sleep" in "shutdown:sleep", and not in "handle-suspend-key".
    bool contains(std::string_view list, std::string_view word)
    {
        while (!list.empty()) {
            const auto colon = list.find(':');
            if (list.substr(0, colon) == word)
                return true;
            list.remove_prefix(colon == list.npos ? list.size() : colon + 1);
        }
        return false;
    }

    /// Of the values that the lid's settings may have; not "ignore", "lock" or "poweroff", which are other wishes.
    bool meansSleep(std::string_view action)
    {
        static constexpr std::array sleeps{"suspend", "hibernate", "hybrid-sleep", "suspend-then-hibernate", "sleep"};
        return std::ranges::find(sleeps, action) != sleeps.end();
    }

} // namespace

std::expected<BusMessage, std::string> LogindManager::newCall(const char* method) const
{
    sd_bus_message* message = nullptr;
    const int made = sd_bus_message_new_method_call(&bus_, &message, service, path, interface, method);
    if (made < 0)
        return std::unexpected{systemError(made)};
    return BusMessage{message};
}

std::expected<BusMessage, std::string> LogindManager::send(sd_bus_message& message) const
{
    BusError error;
    sd_bus_message* reply = nullptr;
    const int sent = sd_bus_call(&bus_, &message, 0, &error.error, &reply);
    if (sent < 0)
        return std::unexpected{std::string{sd_bus_message_get_member(&message)} + " : " + error.description(sent)};
    return BusMessage{reply};
}

template <class... Arguments>
std::expected<BusMessage, std::string> LogindManager::call(
    const char* method, const char* types, Arguments... arguments) const
{
    auto message = newCall(method);
    if (!message)
        return message;
    if (*types)
        if (const int appended = sd_bus_message_append(message->get(), types, arguments...); appended < 0)
            return std::unexpected{systemError(appended)};
    return send(**message);
}

std::optional<bool> LogindManager::flag(const char* property) const
{
    int value = 0;
    if (sd_bus_get_property_trivial(&bus_, service, path, interface, property, nullptr, 'b', &value) < 0)
        return {};
    return value != 0;
}

std::optional<std::string> LogindManager::text(const char* property) const { return text(path, interface, property); }

std::optional<std::string> LogindManager::text(const char* object, const char* of, const char* property) const
{
    char* value = nullptr;
    if (sd_bus_get_property_string(&bus_, service, object, of, property, nullptr, &value) < 0)
        return {};
    const std::unique_ptr<char, Unref<std::free>> owned{value};
    return value;
}

/// "user", "user-early" and the like; not "greeter" or "background".
bool LogindManager::isLogin(const char* session) const
{
    return text(session, sessionInterface, "Class").value_or("user").starts_with("user");
}

bool LogindManager::hasSessionsOfOthers(uid_t user) const
{
    const auto reply = call("ListSessions", "");
    if (!reply)
        return true;
    auto* message = reply->get();
    int result = sd_bus_message_enter_container(message, 'a', "(susso)");
    const char *id = nullptr, *name = nullptr, *seat = nullptr, *session = nullptr;
    std::uint32_t owner = 0;
    while (result >= 0 && (result = sd_bus_message_read(message, "(susso)", &id, &owner, &name, &seat, &session)) > 0)
        if (owner != user && isLogin(session))
            return true;
    return result < 0;
}

HelperResult LogindSleepSetting::setSleepDisabled(bool disabled)
{
    if (disabled)
        return lock_ ? HelperResult{} : takeLock();
    letGo();
    return {};
}

HelperResult LogindSleepSetting::takeLock()
{
    const auto reply = manager_.call("Inhibit",
        "ssss",
        "sleep:handle-lid-switch",
        Brand::appName().c_str(),
        "Closed-lid mode is on until the session ends",
        "block");
    if (!reply)
        return std::unexpected{reply.error()};
    int borrowed = -1;
    if (const int read = sd_bus_message_read(reply->get(), "h", &borrowed); read < 0)
        return std::unexpected{"Inhibit : " + systemError(read)};
    // The descriptor in the message is closed with the message.
    lock_ = FileDescriptor{fcntl(borrowed, F_DUPFD_CLOEXEC, 3)};
    if (!lock_)
        return std::unexpected{"Inhibit : " + systemError(-errno)};
    return watch();
}

/// The lock is the writing end of a pipe. When logind closes the other end, `poll` reports an error, even if no event
/// is asked for.
HelperResult LogindSleepSetting::watch()
{
    sd_event_source* source = nullptr;
    const auto lost = [](sd_event_source*, int, std::uint32_t, void* self) {
        static_cast<LogindSleepSetting*>(self)->replaceLock();
        return 0;
    };
    const int watched = sd_event_add_io(sd_bus_get_event(&manager_.bus()), &source, lock_.get(), 0, lost, this);
    watch_.reset(source);
    if (watched >= 0)
        return {};
    letGo();
    return std::unexpected{"Inhibit : " + systemError(watched)};
}

void LogindSleepSetting::replaceLock()
{
    watch_.reset();
    // Stays open until there is a new one: a logind that was only restarted restores the old lock.
    const auto dropped = std::exchange(lock_, {});
    if (const auto taken = takeLock(); !taken)
        onLoss_(taken.error());
}

void LogindSleepSetting::letGo()
{
    watch_.reset();
    lock_.reset();
}

std::expected<std::optional<std::string>, std::string> LogindPower::blocker(
    const std::function<bool(std::string_view held)>& counts)
{
    const auto reply = manager_.call("ListInhibitors", "");
    if (!reply)
        return std::unexpected{reply.error()};
    auto* message = reply->get();
    int result = sd_bus_message_enter_container(message, 'a', "(ssssuu)");
    const char *held = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
    std::uint32_t user = 0, process = 0;
    std::optional<std::string> found;
    while (result >= 0
        && (result = sd_bus_message_read(message, "(ssssuu)", &held, &who, &why, &mode, &user, &process)) > 0)
        // Our own lock may not have been removed yet.
        if (process != static_cast<std::uint32_t>(getpid()) && std::string_view{mode}.starts_with("block")
            && counts(held))
            found = who;
    if (result < 0)
        return std::unexpected{"ListInhibitors : " + systemError(result)};
    return found;
}

HelperResult LogindPower::unblocked(const char* what)
{
    const auto other = blocker([what](std::string_view held) { return contains(held, what); });
    if (!other)
        return std::unexpected{other.error()};
    if (const auto& name = *other)
        return std::unexpected{"« " + *name + " » s'y oppose"};
    return {};
}

HelperResult LogindPower::canSuspend()
{
    const auto reply = manager_.call("CanSuspend", "");
    if (!reply)
        return std::unexpected{reply.error()};
    const char* verdict = nullptr;
    if (const int read = sd_bus_message_read(reply->get(), "s", &verdict); read < 0)
        return std::unexpected{"CanSuspend : " + systemError(read)};
    if (std::string_view{verdict} == "na")
        return std::unexpected{"cet ordinateur ne sait pas se mettre en veille"};
    return unblocked("sleep");
}

HelperResult LogindPower::unlessBlocked(const char* what, const char* method)
{
    if (const auto free = unblocked(what); !free)
        return free;
    if (const auto done = manager_.call(method, "b", 0); !done)
        return std::unexpected{done.error()};
    return {};
}

/// Does not count a desktop that inhibits the lid together with the keys. It handles both itself, but reacts only when
/// the lid moves, and so ignores one that has been shut all the while.
bool LogindPower::isLidHeldByOthers()
{
    const auto other = blocker([](std::string_view held) {
        return contains(held, "handle-lid-switch") && !contains(held, "handle-power-key");
    });
    return !other || *other;
}

bool LogindPower::shouldSleepForLid()
{
    if (!manager_.flag("LidClosed").value_or(false) || manager_.flag("Docked").value_or(false))
        return false;
    const bool isOnCharger = manager_.flag("OnExternalPower").value_or(false);
    const auto onCharger = isOnCharger ? manager_.text("HandleLidSwitchExternalPower") : std::nullopt;
    // HandleLidSwitchExternalPower is empty where HandleLidSwitch counts on the charger too.
    const auto action = onCharger && !onCharger->empty() ? onCharger : manager_.text("HandleLidSwitch");
    return meansSleep(action.value_or("suspend")) && !isLidHeldByOthers();
}

BusSlot LogindPower::onPrepareForSleep(std::function<void()> prepare)
{
    prepare_ = std::move(prepare);
    sd_bus_slot* slot = nullptr;
    const auto heard = [](sd_bus_message* message, void* self, sd_bus_error*) {
        int sleeps = 0;
        if (sd_bus_message_read(message, "b", &sleeps) >= 0 && sleeps)
            static_cast<LogindPower*>(self)->prepare_();
        return 0;
    };
    sd_bus_match_signal_async(
        &manager_.bus(), &slot, service, path, interface, "PrepareForSleep", heard, nullptr, this);
    return BusSlot{slot};
}

} // namespace vespra
