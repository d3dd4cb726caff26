#pragma once

#include <string>

namespace vespra {

class SessionShortcut;

/// What a surface shows of the shortcut. Followed by an observation loop that asks. Main thread only.
namespace shortcutFacts {

    /// The keys that work, as this desktop writes them; empty where the user wants none.
    std::string keys(const SessionShortcut& shortcut);
    /// Why the keys do not work, and what to do: a sentence. Empty while they work, and where the user wants none.
    std::string notice(const SessionShortcut& shortcut);
    /// The command that does the same, for the desktop's own settings; empty where it is not needed.
    std::string command(const SessionShortcut& shortcut);

} // namespace shortcutFacts

} // namespace vespra
