#pragma once

#include <expected>
#include <functional>
#include <string_view>

namespace vespra {

/// Keys that are pressed together. On a Mac keyboard alt is Option and super is Command.
struct KeyCombination {
    bool control = false, alt = false, super = false, shift = false;
    /// What the key types on its own: an ASCII letter in lower case, or a digit.
    char key = 0;
    bool operator==(const KeyCombination&) const = default;
};

/// Keys that work from any application. Main thread only.
class GlobalShortcut {
public:
    enum class Failure {
        /// Another program has the keys already.
        conflict,
        /// This desktop lets no program have keys of its own, or none with that key.
        unavailable,
    };

    virtual ~GlobalShortcut() = default;

    /// Takes the keys, in the place of those that `name` had, and calls `onKeyUp` each time they have been pressed and
    /// released; holding them down counts once. A name that fails has no keys.
    virtual std::expected<void, Failure> set(
        std::string_view name, const KeyCombination& keys, std::function<void()> onKeyUp)
        = 0;
    /// Gives the keys of `name` back, if it has any.
    virtual void clear(std::string_view name) = 0;
};

/// Starts a session, or stops the one that runs.
constexpr std::string_view toggleSessionShortcut = "toggleSession";
constexpr KeyCombination defaultToggleSessionKeys{.control = true, .alt = true, .super = true, .key = 'w'};

} // namespace vespra
