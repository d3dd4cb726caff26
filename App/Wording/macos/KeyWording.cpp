#include "App/Wording/KeyWording.h"

#include <utility>

namespace vespra {

std::string displayText(const KeyCombination& keys)
{
    std::string text;
    for (const auto& [isWanted, sign] :
        {std::pair{keys.control, "⌃"}, {keys.alt, "⌥"}, {keys.shift, "⇧"}, {keys.super, "⌘"}})
        if (isWanted)
            text += sign;
    const bool isLetter = keys.key >= 'a' && keys.key <= 'z';
    return text + static_cast<char>(isLetter ? keys.key - 'a' + 'A' : keys.key);
}

} // namespace vespra
