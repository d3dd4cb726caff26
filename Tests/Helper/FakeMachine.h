#pragma once

#include "Core/Scheduling/VirtualTime.h"
#include "Helper/HelperDaemon.h"

namespace vespra {

/// Thrown where the daemon is killed.
struct Killed { };

/// Tasks that may come too early.
struct EarlyTasks final : TaskScheduling {
    EarlyTasks(VirtualTime& onTime, double ofTheWait)
        : time{onTime}
        , share{ofTheWait}
    {
    }
    ContinuousInstant continuousNow() const override { return time.continuousNow(); }
    std::unique_ptr<ScheduledTask> schedule(Seconds after, std::function<void()> action) override
    {
        return time.schedule(after * share, std::move(action));
    }
    VirtualTime& time;
    double share;
};

/// A computer whose setting and disk outlive the daemon. Killing the daemon before its n-th change loses nothing that
/// it had changed by then, and it changes nothing any more.
class FakeMachine final : public SleepSetting, public LedgerStorage, public PowerControl, public Authorization {
public:
    bool isDisabled = false; // the setting
    std::optional<SleepOverrideRecord> disk;
    bool isDiskGarbage = false;
    bool isDiskWritable = true;
    bool isSettingStuck = false;
    /// The daemon, being root, could send the computer to sleep past the setting.
    bool isSettingForUsersOnly = false;
    bool isLidShut = false;
    std::vector<std::string> deeds;
    /// How long each change takes; tasks come too early then.
    Seconds delay{};
    /// Who wants the computer to stay on.
    std::string blocker;
    std::optional<Denial::Reason> denial;
    /// Authorizations are answered when the test says so.
    bool asksTheUser = false;
    std::vector<std::function<void()>> asked;

    /// The daemon is killed before the change that comes after `changes` more.
    void killAfter(int changes) { changesLeft_ = changes; }
    /// A new daemon may run.
    void revive()
    {
        isDead_ = false;
        changesLeft_.reset();
        asked.clear();
    }

    HelperMachine parts(VirtualTime& time)
    {
        tasks_.emplace(time, delay > 0s ? 0.9 : 1);
        return {*this, *this, *this, *this, *tasks_, time};
    }

    std::expected<bool, std::string> isSleepDisabled() override { return isDisabled; }
    HelperResult setSleepDisabled(bool disabled) override
    {
        if (!mayChange() || isSettingStuck)
            return std::unexpected{"le réglage ne répond pas"};
        isDisabled = disabled;
        return {};
    }
    std::expected<std::optional<SleepOverrideRecord>, std::string> read() override
    {
        if (isDiskGarbage)
            return std::unexpected{"illisible"};
        return disk;
    }
    HelperResult write(const SleepOverrideRecord& record) override
    {
        if (!mayChange())
            return std::unexpected{"disque plein"};
        disk = record;
        // What was written when it failed may stay.
        if (!isDiskWritable)
            return std::unexpected{"disque plein"};
        return {};
    }
    HelperResult erase() override
    {
        if (!mayChange() || !isDiskWritable)
            return std::unexpected{"disque en lecture seule"};
        disk.reset();
        return {};
    }
    HelperResult setAside() override
    {
        if (!mayChange() || !isDiskWritable)
            return std::unexpected{"disque en lecture seule"};
        isDiskGarbage = false;
        return {};
    }
    HelperResult suspend() override
    {
        if (isDisabled && !isSettingForUsersOnly)
            return std::unexpected{"la veille est désactivée"};
        deeds.emplace_back("suspend");
        return {};
    }
    HelperResult canSuspend() override { return blocker.empty() ? HelperResult{} : std::unexpected{blocker}; }
    HelperResult powerOff() override
    {
        if (!blocker.empty())
            return std::unexpected{blocker};
        deeds.emplace_back(isDisabled ? "powerOff while kept awake" : "powerOff");
        return {};
    }
    bool shouldSleepForLid() override { return isLidShut; }
    void check(const ClientName&, Right, Interaction interaction, std::function<void(const Verdict&)> answer) override
    {
        const bool provesIt = denial == Denial::Reason::needsAuthentication && interaction == Interaction::allowed;
        const auto verdict
            = denial && !provesIt ? Verdict{std::unexpected{Denial{*denial, "pas autorisé"}}} : Verdict{};
        if (asksTheUser)
            asked.emplace_back([answer, verdict] { answer(verdict); });
        else
            answer(verdict);
    }

private:
    bool mayChange()
    {
        if (isDead_)
            return false;
        tasks_->time.pass(delay);
        if (changesLeft_ && (*changesLeft_)-- == 0) {
            isDead_ = true;
            throw Killed{};
        }
        return true;
    }

    std::optional<EarlyTasks> tasks_;
    std::optional<int> changesLeft_;
    bool isDead_ = false;
};

} // namespace vespra
