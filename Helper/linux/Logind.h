#pragma once

#include "Helper/linux/SystemBus.h"
#include "Helper/PowerControl.h"
#include "HelperProtocol/FileDescriptor.h"

#include <functional>

namespace vespra {

/// One call to logind's manager. Waits as long as the bus's own limit says.
class LogindManager {
public:
    explicit LogindManager(sd_bus& bus)
        : bus_{bus}
    {
    }

    sd_bus& bus() const { return bus_; }
    /// `types` and `arguments` as for sd_bus_message_append.
    template <class... Arguments>
    std::expected<BusMessage, std::string> call(const char* method, const char* types, Arguments... arguments) const;
    /// Absent if there is no answer, or it is no such property.
    std::optional<bool> flag(const char* property) const;
    std::optional<std::string> text(const char* property) const;
    /// Whether anybody but `user` is logged in; greeters and background sessions do not count. True if there is no
    /// answer, which is the safe side: it only takes rights away.
    bool hasSessionsOfOthers(uid_t user) const;

private:
    std::expected<BusMessage, std::string> send(sd_bus_message& message) const;
    std::expected<BusMessage, std::string> newCall(const char* method) const;
    std::optional<std::string> text(const char* object, const char* of, const char* property) const;
    bool isLogin(const char* session) const;

    sd_bus& bus_;
};

/// The setting as a block lock of logind's: it stops logind's own handling of the lid and, being another user's lock,
/// the suspend that a desktop asks for. It ends with this process, whatever ends that.
class LogindSleepSetting final : public SleepSetting {
public:
    /// A lock that logind drops on its own is taken again at once; `onLoss` is told why if that fails.
    LogindSleepSetting(sd_bus& bus, std::function<void(const std::string&)> onLoss)
        : manager_{bus}
        , onLoss_{std::move(onLoss)}
    {
    }
    ~LogindSleepSetting() override { letGo(); }
    LogindSleepSetting(const LogindSleepSetting&) = delete;
    LogindSleepSetting& operator=(const LogindSleepSetting&) = delete;

    std::expected<bool, std::string> isSleepDisabled() override { return static_cast<bool>(lock_); }
    HelperResult setSleepDisabled(bool disabled) override;

private:
    HelperResult takeLock();
    HelperResult watch();
    void letGo();
    void replaceLock();

    LogindManager manager_;
    std::function<void(const std::string&)> onLoss_;
    FileDescriptor lock_;
    /// Ends before the descriptor that it watches.
    EventSource watch_;
};

/// Suspend and shutdown by logind, and what logind would do about the lid.
class LogindPower final : public PowerControl {
public:
    explicit LogindPower(sd_bus& bus)
        : manager_{bus}
    {
    }

    HelperResult canSuspend() override;
    HelperResult suspend() override { return unlessBlocked("sleep", "Suspend"); }
    HelperResult powerOff() override { return unlessBlocked("shutdown", "PowerOff"); }
    bool shouldSleepForLid() override;

    /// Calls back whenever the computer is about to sleep, for as long as the slot is kept.
    BusSlot onPrepareForSleep(std::function<void()> prepare);

private:
    HelperResult unblocked(const char* what);
    HelperResult unlessBlocked(const char* what, const char* method);
    bool isLidHeldByOthers();
    /// Who else holds a block lock on what `counts`; root may go past such locks, but not on a user's behalf.
    std::expected<std::optional<std::string>, std::string> blocker(
        const std::function<bool(std::string_view held)>& counts);

    LogindManager manager_;
    std::function<void()> prepare_;
};

} // namespace vespra
