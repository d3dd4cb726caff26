#include "App/Model/ShortcutFacts.h"

#include "App/Model/SessionShortcut.h"
#include "App/Wording/KeyWording.h"
#include "App/Wording/Localized.h"

namespace vespra::shortcutFacts {

std::string keys(const SessionShortcut& shortcut)
{
    if (!shortcut.desktopsKeys().empty())
        return shortcut.desktopsKeys();
    const auto& chosen = shortcut.keys();
    return chosen ? displayText(*chosen) : "";
}

std::string notice(const SessionShortcut& shortcut)
{
    const auto& failure = shortcut.failure();
    if (!failure || !shortcut.keys())
        return {};
    switch (*failure) {
    case GlobalShortcut::Failure::conflict:
        return localized("Another app already uses these keys. Choose others.");
    case GlobalShortcut::Failure::unassigned:
        return localized("No keys are set. Choose them in your desktop's keyboard settings.");
    case GlobalShortcut::Failure::unavailable:
        break;
    }
    return localized("These keys don't work on this Mac. Choose others.", {command(shortcut)});
}

std::string command(const SessionShortcut& shortcut)
{
    return shortcut.failure() == GlobalShortcut::Failure::unavailable ? "vespractl toggle" : "";
}

} // namespace vespra::shortcutFacts
