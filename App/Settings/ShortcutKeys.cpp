#include "App/Settings/ShortcutKeys.h"

#include "App/Wording/Localized.h"

#include <cctype>

namespace vespra {

namespace {

    char letterOrDigit(int key)
    {
        if (key >= Qt::Key_A && key <= Qt::Key_Z)
            return static_cast<char>('a' + (key - Qt::Key_A));
        if (key >= Qt::Key_0 && key <= Qt::Key_9)
            return static_cast<char>('0' + (key - Qt::Key_0));
        return 0;
    }

} // namespace

std::string keysText(const KeyCombination& keys)
{
    std::string text;
    for (const auto& modifier : modifierKeys())
        if (keys.*modifier.isWanted)
            text.append(localized(modifier.name)).append(keySeparator());
    if (keys.key)
        text += static_cast<char>(std::toupper(static_cast<unsigned char>(keys.key)));
    return text;
}

KeyCombination pressedKeys(const QKeyEvent& event)
{
    KeyCombination keys{.key = letterOrDigit(event.key())};
    for (const auto& modifier : modifierKeys())
        keys.*modifier.isWanted = event.modifiers().testFlag(modifier.qt);
    return keys;
}

} // namespace vespra
