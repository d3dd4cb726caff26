#pragma once

#include "App/System/Platform.h"
#include "ControlProtocol/SettingTexts.h"
#include "ControlProtocol/StartOptions.h"

#include <optional>
#include <variant>

namespace vespra {

inline constexpr const char* programName = "vespra";

/// Pictures that are to be drawn instead of running.
struct RenderRequest {
    std::string directory;
    /// Only this one; absent: all.
    std::optional<std::string> name;
};

/// What the command line asks of this launch, with windows or without.
struct LaunchOptions {
    /// In the terminal, also where there is a display.
    bool isHeadless = false;
    StartOptions session;
    /// For this run only, from the session's defaults and what else is stored; absent: the settings that are stored.
    std::optional<std::vector<settingTexts::Change>> settings;
    /// The agents' grace delay, whatever the settings say.
    std::optional<Seconds> grace;
    /// Absent: the system's own platform, or a simulated laptop where no power manager answers.
    std::optional<PlatformKind> platform;
    /// Start no session: listen to the agents and wait for the end.
    bool isIdle = false;
    /// Asks for nothing else then.
    std::optional<RenderRequest> render;

    /// Nothing is asked for but that the application runs.
    bool isPlain() const { return session == StartOptions{} && !settings && !grace && !platform && !isIdle; }
};

/// The options, or the status to exit with after help or a complaint has been printed.
std::variant<LaunchOptions, int> parsedCommandLine(int argc, char** argv);

} // namespace vespra
