#pragma once

#include "Core/Observation/Observed.h"
#include "Core/Scheduling/Instant.h"
#include "Core/Updates/UpdateMessage.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace vespra {

/// How it stands with new versions, for a page that shows it.
namespace update {

    struct Idle : Case { };
    struct Checking : Case { };
    struct UpToDate : Case { };
    struct Available {
        /// As users read it.
        std::string version;
        /// What is new: plain text with line breaks, may be empty.
        std::string notes;
        /// It only has to be installed.
        bool isDownloaded = false;
        bool operator==(const Available&) const = default;
    };
    struct Downloading {
        std::string version;
        /// From 0 to 1.
        double fraction = 0;
        bool operator==(const Downloading&) const = default;
    };
    /// What the user asked for did not work.
    struct Failed {
        UpdateFailure reason;
        bool operator==(const Failed&) const = default;
    };

} // namespace update

using UpdateState = std::variant<update::Idle, update::Checking, update::UpToDate, update::Available,
    update::Downloading, update::Failed>;

/// Looks for new versions of the application and installs them; it keeps what is set here. Main thread only.
class Updater {
public:
    virtual ~Updater() = default;

    virtual bool automaticallyChecks() const = 0;
    virtual void setAutomaticallyChecks(bool checks) = 0;
    virtual bool automaticallyInstalls() const = 0;
    virtual void setAutomaticallyInstalls(bool installs) = 0;
    /// Absent before the first check.
    virtual std::optional<Instant> lastCheck() const = 0;
    /// Checks, and shows the user what comes of it.
    virtual void checkForUpdates() = 0;

    /// Whether it shows what it finds, and its errors, in windows of its own. Then `state` stays idle.
    virtual bool hasWindows() const = 0;
    /// Followed by observation loops.
    const UpdateState& state() const { return state_.get(); }
    /// Fetches the version that is available, if it has to, and hands it to the system.
    virtual void install() { }
    /// Ends a check or a download that is under way.
    virtual void cancel() { }

    /// An update is about to be shown: its version, as users read it, and whether the user has asked for the check.
    std::function<void(const std::string& version, bool isAskedFor)> onWillShowUpdate;
    /// The user looks at the update, or the updater is done with it.
    std::function<void()> onUpdateSeen;
    /// A check is over, with whatever result.
    std::function<void()> onCycleFinished;

protected:
    void setState(UpdateState state) { state_.set(std::move(state)); }

private:
    Observed<UpdateState> state_;
};

} // namespace vespra
