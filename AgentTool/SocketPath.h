#pragma once

#include <string>

namespace vespra {

/// Where the application listens: "VESPRA_AGENT_SOCKET" of the environment if that is set; else the socket beside this
/// program, which the application copies into its support folder, whatever HOME an agent runs with; else the socket in
/// the user's support folder.
std::string socketPath();

} // namespace vespra
