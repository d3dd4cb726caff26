#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// Keys that are pressed together. On a Mac keyboard alt is Option and super is Command.
struct KeyCombination {
    bool control = false, alt = false, shift = false, super = false;
    /// What the key types on its own: an ASCII letter in lower case, or a digit.
    char key = 0;
    bool operator==(const KeyCombination&) const = default;

    /// Whether they can be taken away from all applications: with a key of the above, and not what people type.
    bool canBeGlobal() const;
};

/// "ctrl+alt+super+w": as people write it in a terminal, and as it is kept. The modifiers in this order: ctrl, alt,
/// shift, super.
std::string text(const KeyCombination& keys);
/// The same read, the modifiers in any order and each at most once; absent for anything else, and for what cannot be
/// global.
std::optional<KeyCombination> keyCombination(std::string_view text);

/// Starts a session, or stops the one that runs.
constexpr KeyCombination defaultToggleSessionKeys{.control = true, .alt = true, .super = true, .key = 'w'};

} // namespace vespra
