#pragma once

#include "Helper/linux/SystemBus.h"
#include "Helper/PowerControl.h"

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

private:
    std::expected<BusMessage, std::string> send(sd_bus_message& message) const;
    std::expected<BusMessage, std::string> newCall(const char* method) const;

    sd_bus& bus_;
};

/// The setting as a block lock of logind's: it stops logind's own handling of the lid and, being another user's lock,
/// the suspend that a desktop asks for. It ends with this process, whatever ends that.
class LogindSleepSetting final : public SleepSetting {
public:
    explicit LogindSleepSetting(sd_bus& bus)
        : manager_{bus}
    {
    }
    ~LogindSleepSetting() override { letGo(); }
    LogindSleepSetting(const LogindSleepSetting&) = delete;
    LogindSleepSetting& operator=(const LogindSleepSetting&) = delete;

    std::expected<bool, std::string> isSleepDisabled() override { return lock_ >= 0; }
    HelperResult setSleepDisabled(bool disabled) override;

private:
    HelperResult takeLock();
    void letGo();

    LogindManager manager_;
    int lock_ = -1;
};

class LogindPower final : public PowerControl {
public:
    explicit LogindPower(sd_bus& bus)
        : manager_{bus}
    {
    }

    HelperResult suspend() override { return unlessBlocked("sleep", "Suspend"); }
    HelperResult powerOff() override { return unlessBlocked("shutdown", "PowerOff"); }
    bool shouldSleepForLid() override;

    /// Calls back whenever the computer is about to sleep, for as long as the slot is kept.
    BusSlot onPrepareForSleep(std::function<void()> prepare);

private:
    HelperResult unlessBlocked(const char* what, const char* method);
    /// Who else holds a block lock on `what`; root may go past such locks, but not on a user's behalf.
    std::expected<std::optional<std::string>, std::string> blocker(std::string_view what);

    LogindManager manager_;
    std::function<void()> prepare_;
};

} // namespace vespra
