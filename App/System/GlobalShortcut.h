#pragma once

#include "Core/KeyCombination.h"

#include <expected>
#include <functional>
#include <string>
#include <string_view>

namespace vespra {

/// Keys that work from any application. Main thread only.
class GlobalShortcut {
public:
    enum class Failure {
        /// Another program has the keys already.
        conflict,
        /// The desktop leaves it to the user to choose keys in its own settings, and there are none.
        unassigned,
        /// This desktop lets no program have keys of its own, or none with that key.
        unavailable,
    };
    /// That the keys work: as the desktop calls those that do, where the user may choose others in its own settings;
    /// elsewhere an empty text.
    using Outcome = std::expected<std::string, Failure>;

    struct Request {
        /// The same from one launch to the next; one word.
        std::string name;
        /// What the keys do, for the user.
        std::string description;
        KeyCombination keys;
        /// Called each time they have been pressed and released; holding them down counts once.
        std::function<void()> onKeyUp;
        /// Called in a later turn or at once, and again whenever it changes.
        std::function<void(const Outcome&)> onOutcome;
    };

    virtual ~GlobalShortcut() = default;

    /// Takes the keys, in the place of those that `request.name` had. A name that fails has no keys.
    virtual void set(Request request) = 0;
    /// Gives the keys of `name` back, if it has any; nothing is called for it any more.
    virtual void clear(std::string_view name) = 0;
};

} // namespace vespra
