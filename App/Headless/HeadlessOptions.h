#pragma once

#include "App/System/Platform.h"
#include "Core/Session/SessionPreferences.h"
#include "Core/Session/SessionSettings.h"

#include <optional>
#include <variant>

namespace vespra {

/// What the command line asks of a run in the terminal.
struct HeadlessOptions {
    SessionPreferences preferences;
    SessionSettings settings;
    /// Absent: the system's own, or a simulated laptop where no power manager answers.
    std::optional<PlatformKind> platform;
    /// Start no session: listen to the agents and wait for the end.
    bool isIdle = false;
};

/// The options, or the status to exit with after help or a complaint has been printed.
std::variant<HeadlessOptions, int> parsedCommandLine(int argc, char** argv);

} // namespace vespra
