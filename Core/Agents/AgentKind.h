#pragma once

#include "Core/RawValue.h"

#include <span>

namespace vespra {

/// A coding agent that reports through hooks.
enum class AgentKind { claudeCode, codex };

/// In JSON, in tracker keys and as the argument of the hook command.
template <>
inline constexpr auto rawValues<AgentKind> = RawValueTable<AgentKind, 2>{{
    {AgentKind::claudeCode, "claude"},
    {AgentKind::codex, "codex"},
}};

inline constexpr std::array allAgentKinds{AgentKind::claudeCode, AgentKind::codex};

/// "Claude Code", "Codex".
std::string_view displayName(AgentKind kind);

/// The hook events that Vespra listens to, in the order in which they are written into the agent's settings.
std::span<const std::string_view> hookEvents(AgentKind kind);

} // namespace vespra
