#pragma once

#include "App/System/Updater.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"
#include "Log/SystemLog.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace vespra {

/// A run of the program that fetches updates. Destroying it ends that, and nothing is called any more.
class UpdateRun {
public:
    virtual ~UpdateRun() = default;
};

/// What the updater needs of its system.
class UpdateTools {
public:
    virtual ~UpdateTools() = default;

    /// Runs the program with `arguments` and `input`. `onMessage` is called in later turns for each of its messages;
    /// then `onEnd`, however it ends. Neither must destroy the run.
    virtual std::unique_ptr<UpdateRun> run(const std::vector<std::string>& arguments, const std::string& input,
        std::function<void(const UpdateMessage&)> onMessage, std::function<void()> onEnd)
        = 0;
    /// Hands a package to the system's installer. `onDone` is called in a later turn with whether there is one.
    virtual void open(const std::string& package, std::function<void(bool opened)> onDone) = 0;
};

/// Looks for new versions in a signed feed: when asked, and at most once a day by itself. What goes wrong then stays
/// unseen and is tried again later; what the user asked for says so.
class FeedUpdater final : public Updater {
public:
    struct Environment {
        std::unique_ptr<UpdateTools> tools;
        /// Both outlive it.
        TaskScheduling& tasks;
        const WallClock& clock;
        /// What is kept, from one launch to the next.
        std::filesystem::path record;
        /// Of packages.
        std::filesystem::path folder;
        /// From 0 to below 1, so that not everybody asks at the same moment.
        std::function<double()> chance;
    };

    explicit FeedUpdater(Environment environment);

    bool automaticallyChecks() const override { return record_.checks; }
    void setAutomaticallyChecks(bool checks) override;
    bool automaticallyInstalls() const override { return record_.installs; }
    /// Without being asked it fetches the package; the system's installer shows windows, and waits for the user.
    void setAutomaticallyInstalls(bool installs) override;
    std::optional<Instant> lastCheck() const override { return record_.lastCheck; }
    void checkForUpdates() override;
    bool hasWindows() const override { return false; }
    void install() override;
    void cancel() override;

private:
    enum class Doing { nothing, checking, fetching };
    struct Record {
        bool checks = true;
        bool installs = false;
        std::optional<Instant> lastCheck;
    };
    void readRecord();
    void save();
    void planCheck();
    void check(bool isAskedFor);
    void checked();
    void found(const UpdateOffer& offer);
    void fetch(bool isAskedFor);
    void fetched();
    void openPackage();
    void failed(const updateMessage::Failed& failure);
    void run(
        Doing what, const std::vector<std::string>& arguments, const std::string& input, void (FeedUpdater::*onEnd)());
    void stopRun();
    void received(const UpdateMessage& message);
    /// What is known without a check under way.
    UpdateState settled() const;

    Environment environment_;
    SystemLog log_;
    Record record_;
    int failures_ = 0;
    bool isAskedFor_ = false;
    std::optional<UpdateOffer> offer_;
    /// Of the offer, once it is fetched.
    std::optional<std::string> package_;
    /// The last that was told in this run.
    UpdateMessage answer_;
    std::unique_ptr<ScheduledTask> nextCheck_;
    std::unique_ptr<UpdateRun> run_;
    /// The end of a run is dealt with in a turn of its own, as the next run takes its place.
    std::unique_ptr<ScheduledTask> end_;
    Doing doing_ = Doing::nothing;
    Lifetime lifetime_;
};

} // namespace vespra
