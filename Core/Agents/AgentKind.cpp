#include "Core/Agents/AgentKind.h"

namespace vespra {

namespace {

    constexpr std::array<std::string_view, 6> claudeCodeEvents{
        "SessionStart", "UserPromptSubmit", "PostToolUse", "Notification", "Stop", "SessionEnd"};
    constexpr std::array<std::string_view, 7> codexEvents{
        "SessionStart", "UserPromptSubmit", "PostToolUse", "PermissionRequest", "Stop", "Interrupt", "SessionEnd"};

} // namespace

std::string_view displayName(AgentKind kind) { return kind == AgentKind::claudeCode ? "Claude Code" : "Codex"; }

std::span<const std::string_view> hookEvents(AgentKind kind)
{
    if (kind == AgentKind::claudeCode)
        return claudeCodeEvents;
    return codexEvents;
}

} // namespace vespra
