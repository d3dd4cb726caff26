#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What the product is called, read from the application's property list: on macOS the bundle's Info.plist, elsewhere
/// the same list built into the program. A key that is missing, not a text, or empty is a fatal configuration error:
/// the program stops at once and names the key on standard error. Any thread.
namespace vespra::Brand {

/// "Vespra": the display name, also of the support folder.
const std::string& appName();
/// The subsystem of every log.
const std::string& appBundleID();
/// The identifier of the privileged component and the name of its service.
const std::string& helperBundleID();
/// The signing team that the component and the application must have.
const std::string& teamID();
/// The name of the hook command.
const std::string& agentCLIName();

/// The user's folder for the application's own data, without a final slash. macOS:
/// "~/Library/Application Support/Vespra"; elsewhere "$XDG_DATA_HOME/Vespra", by default "~/.local/share/Vespra".
std::string applicationSupportDirectory();
/// The same for another home directory, whatever the environment says of this one.
std::string applicationSupportDirectory(std::string_view home);
/// "agent.sock" in the support folder.
std::string agentSocketPath();

const std::string& helperMachServiceName();
/// The code-signing requirement that a program with `identifier` must meet.
std::string codeSigningRequirement(std::string_view identifier);

/// The value itself, if it is usable; otherwise ends the program.
std::string requiredValue(std::string_view key, std::optional<std::string> value);

} // namespace vespra::Brand
