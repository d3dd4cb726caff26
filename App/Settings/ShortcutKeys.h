#pragma once

#include "Core/KeyCombination.h"

#include <QKeyEvent>

#include <span>

namespace vespra {

/// A modifier as this system's keyboards name it, and as Qt tells of it.
struct ModifierKey {
    const char* name;
    Qt::KeyboardModifier qt;
    bool KeyCombination::* isWanted;
};
/// All, in the order in which they are written. One per system.
std::span<const ModifierKey> modifierKeys();
/// What stands between keys. One per system.
std::string_view keySeparator();

/// "⌃⌥⌘W" on macOS, "Ctrl+Alt+Super+W" elsewhere. Without a key: the modifiers alone, as while they are held.
std::string keysText(const KeyCombination& keys);

/// What is pressed; its key is 0 if that is none of those that a combination may have.
KeyCombination pressedKeys(const QKeyEvent& event);

} // namespace vespra
