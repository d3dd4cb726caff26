#pragma once

#include "Core/Observation/Observed.h"
#include "Core/Session/SessionEvent.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <optional>

namespace vespra {

class AppModel;

/// The commands during which the computer is to stay awake. They share the session that runs, or get an unlimited one
/// of their own that ends with the last of them. A session that ends as planned while one of them runs is followed by
/// such a session; any other end, by the user or a guardrail say, leaves them all without one. Main thread only.
class RunningCommands {
public:
    /// Never given twice.
    using Command = std::uint64_t;

    /// What a command asks of its session; absent: as it is, or as the user prefers it.
    struct Wishes {
        std::optional<bool> keepsDisplayAwake;
        std::optional<bool> closedLid;
    };

    /// `model` outlives it.
    explicit RunningCommands(AppModel& model)
        : model_{model}
    {
    }
    RunningCommands(const RunningCommands&) = delete;
    RunningCommands& operator=(const RunningCommands&) = delete;

    /// Some command begins. What its wishes switch on in a session stays on as long as a command wants it. `onDropped`
    /// is called once if an end of the session leaves the command without one. A refusal changes nothing.
    std::expected<Command, StartRefusal> begin(const Wishes& wishes, std::function<void()> onDropped);
    /// The command has ended. Does nothing for a dropped one.
    void end(Command command);
    /// Whether a command runs that was not dropped. An observation loop that calls this follows it.
    bool isAnyRunning() const { return isAnyRunning_.get(); }

    /// To be told of each event of the session, after everybody else.
    void handle(const SessionEvent& event);
    /// The user has chosen this option for the session: it is no longer the commands' to take back.
    void userChose(bool SessionOptions::* option);

private:
    struct Running {
        Wishes wishes;
        std::function<void()> onDropped;
    };

    std::expected<void, StartRefusal> join(const Wishes& wishes);
    std::expected<void, StartRefusal> startFor(const Wishes& wishes);
    bool startOwnSession(const SessionOptions& options);
    bool isWanted(std::optional<bool> Wishes::* wish) const;
    void lower();
    void remember();

    AppModel& model_;
    std::map<Command, Running> commands_;
    Command last_ = 0;
    Observed<bool> isAnyRunning_;
    /// The session runs for the commands alone.
    bool isOwnSession_ = false;
    /// What is on for the commands alone.
    SessionOptions raised_;
    /// Those of the session while commands run, for the one that may follow it.
    SessionOptions options_;
};

} // namespace vespra
