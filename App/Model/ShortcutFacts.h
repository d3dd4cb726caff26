#pragma once

#include <string>

namespace vespra {

class SessionShortcut;

/// What a surface says of the shortcut. Followed by an observation loop that asks. Main thread only.
namespace shortcutFacts {

    /// Why the keys do not work, and what to do: a sentence. Empty while they work, and where the user wants none.
    std::string notice(const SessionShortcut& shortcut);

} // namespace shortcutFacts

} // namespace vespra
