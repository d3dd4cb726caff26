#pragma once

#include "App/Agents/ForcedEndAction.h"

#include <string>

namespace vespra {
class AppModel;
}

/// What the panel tells the user in notes, as values. Each is absent while it is not so.
namespace vespra::panelFacts {

/// A note: an icon, a title, what explains it (empty: nothing).
struct Notice {
    std::string_view symbol;
    std::string title;
    std::string text;
    /// For a screen reader, without passing seconds; empty: title and text.
    std::string spoken;
    bool operator==(const Notice&) const = default;
};

/// A guardrail has ended the last session.
std::optional<Notice> endNotice(const AppModel& model);
/// No session could start now.
std::optional<Notice> blockerNotice(const AppModel& model);
/// The next session is to go by agents, and none is connected.
std::optional<Notice> connectNotice(const AppModel& model);
/// The machine is hot, and the session goes on.
std::optional<Notice> heatNotice(const AppModel& model);
/// Closed-lid mode was asked for in this session, and is still not possible.
std::optional<Notice> closedLidRefusalNotice(const AppModel& model);
/// Something else than the agents' work decides how long an agent session goes on, and no time is counted.
std::optional<Notice> agentPhaseNotice(const AppModel& model);
/// A command of `vespractl run` keeps the session going.
std::optional<std::string> commandLine(const AppModel& model);

/// When the agents, which are all done, end the session.
std::optional<Instant> finishingEnd(const AppModel& model);
Notice finishingNotice(const AppModel& model, Instant end, Instant now);

/// A sleep or a shutdown is counted down to.
Notice forcedActionNotice(const AppModel& model, const ForcedEndAction::Pending& pending, Instant now);

/// Whether the start button works.
bool canStart(const AppModel& model);

} // namespace vespra::panelFacts
