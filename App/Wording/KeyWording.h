#pragma once

#include "Core/KeyCombination.h"

#include <string>

namespace vespra {

/// The keys as this system writes them: "⌃⌥⌘W" on macOS, elsewhere "Ctrl+Alt+Super+W". Any thread.
std::string displayText(const KeyCombination& keys);

} // namespace vespra
