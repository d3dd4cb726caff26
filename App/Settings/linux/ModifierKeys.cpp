#include "App/Settings/ShortcutKeys.h"

#include <array>

namespace vespra {

std::span<const ModifierKey> modifierKeys()
{
    static constexpr std::array keys{
        ModifierKey{"Ctrl", Qt::ControlModifier, &KeyCombination::control},
        ModifierKey{"Alt", Qt::AltModifier, &KeyCombination::alt},
        ModifierKey{"Shift", Qt::ShiftModifier, &KeyCombination::shift},
        ModifierKey{"Super", Qt::MetaModifier, &KeyCombination::super},
    };
    return keys;
}

std::string_view keySeparator() { return "+"; }

} // namespace vespra
