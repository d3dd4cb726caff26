#pragma once

#include "Core/Agents/HookSettingsFile.h"

/// What the user is told about the hooks, in windows and terminal alike. English; keys of their translations.
namespace vespra::hookTexts {

/// Above the message of every failure.
inline constexpr std::string_view failureTitle = "Couldn't change the agent's settings";
std::string_view message(HookSettingsFile::Failure failure);

/// "Connected", "Changed by hand".
std::string_view label(HookSettingsFile::Connection connection);

/// Codex runs no hook that its user has not approved.
inline constexpr std::string_view codexNote = "Next time you open Codex, approve the new hook with /hooks.";

} // namespace vespra::hookTexts
