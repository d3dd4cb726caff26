#pragma once

#include "App/Model/AppModel.h"

/// What the panel and the menu-bar item show, as values: functions of the model that views only lay out. Followed by an
/// observation loop that calls them. Main thread only.
namespace vespra::panelFacts {

/// The name of the icon beside a refusal.
std::string_view symbol(const StartRefusal& refusal);

/// Why a start with the current preferences would be refused.
struct StartBlocker {
    std::string_view symbol; // the name of the icon beside the text
    std::string text;
    bool operator==(const StartBlocker&) const = default;
};
/// Absent when nothing blocks. An agent that is not connected is `AppModel::needsAgentConnection`.
std::optional<StartBlocker> startBlocker(const AppModel& model);

/// "Stops at 20% battery · 4h max with lid closed"; absent without a session, and when nothing watches it.
std::optional<std::string> guardrailSummary(const AppModel& model);

/// The end by a guardrail that the user has not dismissed yet, while no session runs.
std::optional<SessionEnd> visibleGuardrailEnd(const AppModel& model);

/// "Claude Code finished in project".
std::string agentsFinishedTitle(const AppModel& model);

/// The row that sets how long the next session is.
struct ModeSetting {
    std::string label;
    std::string value;
    std::string spokenValue;
    std::optional<std::string> detail;
    /// What the preferences are after a step; absent where there is none.
    std::optional<SessionPreferences> decrement;
    std::optional<SessionPreferences> increment;

    bool canDecrement() const { return decrement.has_value(); }
    bool canIncrement() const { return increment.has_value(); }
};
/// Absent in the modes that have no length.
std::optional<ModeSetting> modeSetting(const AppModel& model);

/// The large clock of a session.
struct SessionClock {
    std::string clock;
    std::string subtitle;
    std::string spoken; // for a screen reader
    /// 0 to 1; absent while counting up.
    std::optional<double> remainingFraction;
    bool operator==(const SessionClock&) const = default;
};
SessionClock sessionClock(const ActiveSession& session, Instant now);

/// Whether that clock shows the time left: for sessions that end at a date, but not those of agents.
bool countsDown(const ActiveSession& session);

/// The moment from which, or to which, the session's clock counts whole seconds: what `model.clock()` is asked with.
Instant clockAnchor(const ActiveSession& session);

/// The time left, beside the menu-bar item: a blank and the countdown. Absent while it is not to be shown.
std::optional<std::string> remainingTimeTitle(const AppModel& model);

} // namespace vespra::panelFacts
