#include "App/Settings/ShortcutKeys.h"

#include <array>

namespace vespra {

std::span<const ModifierKey> modifierKeys()
{
    // On a Mac, Qt calls the Command key Control, and the Control key Meta.
    static constexpr std::array keys{
        ModifierKey{"⌃", Qt::MetaModifier, &KeyCombination::control},
        ModifierKey{"⌥", Qt::AltModifier, &KeyCombination::alt},
        ModifierKey{"⇧", Qt::ShiftModifier, &KeyCombination::shift},
        ModifierKey{"⌘", Qt::ControlModifier, &KeyCombination::super},
    };
    return keys;
}

std::string_view keySeparator() { return ""; }

} // namespace vespra
