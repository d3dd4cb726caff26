#pragma once

#include "App/System/SessionMarker.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// `vespractl doctor`: what keeps this machine awake right now, and what could defeat it. Facts are gathered by each
/// system's files, judged here.
namespace vespra::doctor {

/// One thing that the application uses of its system.
struct Facility {
    std::string name;
    /// By what it is carried out; absent: this machine has no way to.
    std::optional<std::string> mechanism;
    /// The current reading, if it is one.
    std::string reading;
};

/// A lock or an inhibition that somebody holds.
struct Inhibitor {
    /// "logind", or the name of the session's service.
    std::string service;
    std::string what;
    std::string who;
    std::string why;
    /// "block" or "delay"; empty where there are no modes.
    std::string mode;
    /// 0 where the service does not say.
    long pid = 0;
    std::optional<std::uint32_t> uid;
    /// The name of the process; empty if it cannot be told.
    std::string process;

    /// Whether `what`, words between colons, has `one`.
    bool covers(std::string_view one) const;
};

/// A service that a running session asks to keep this machine awake.
struct Keeper {
    std::string service;
    /// What an entry of ours in its list has to cover.
    std::string what;
    /// Whether `inhibitors` has everything that it holds, with its holders. False if it does not answer, or does not
    /// name the holders.
    bool tellsAll = false;
};

/// What is found out about a system. One implementation per system.
struct Facts {
    std::vector<Facility> facilities;
    /// What is known to be held.
    std::vector<Inhibitor> inhibitors;
    std::vector<Keeper> keepers;
    /// A sentence each.
    std::vector<std::string> threats;
};
Facts gatherFacts(const std::optional<SessionMarker::Session>& session);

enum class Verdict {
    noSession,
    /// The laptop is simulated, so nothing is to be held on this machine.
    simulated,
    /// Every service that is asked for the lock lists it.
    listed,
    missing,
    /// At least one service does not tell, and none says that it is missing.
    unknown,
};

/// An agent as the running application tracks it.
struct Agent {
    std::string id;
    /// Empty if it has not told.
    std::string folder;
    /// "idle", "working" or "waitingForApproval".
    std::string activity;
    std::string since;
    /// "statusFile", "transcript" or "hooks".
    std::string evidence;
};

struct Report {
    std::optional<SessionMarker::Session> session;
    Facts facts;
    /// Absent if no application answers.
    std::optional<std::vector<Agent>> agents{};

    /// Whether `keeper` holds the running session's lock: listed, missing or unknown.
    Verdict verdict(const Keeper& keeper, const std::string& application) const;
    /// Whether the running session really keeps this machine awake.
    Verdict verdict(const std::string& application) const;
};

std::string text(const Report& report, const std::string& application);
std::string json(const Report& report, const std::string& application);

} // namespace vespra::doctor
