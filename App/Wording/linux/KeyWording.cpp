#include "App/Wording/KeyWording.h"

#include "App/Wording/Localized.h"

#include <QChar>

namespace vespra {

std::string displayText(const KeyCombination& keys)
{
    std::string text;
    for (const auto& [isWanted, name] : {std::pair{keys.control, localized("Ctrl")},
             {keys.alt, localized("Alt")},
             {keys.shift, localized("Shift")},
             {keys.super, localized("Super")}})
        if (isWanted)
            text += name + "+";
    return text + QChar{QLatin1Char{keys.key}}.toUpper().toLatin1();
}

} // namespace vespra
