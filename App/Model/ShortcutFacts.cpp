#include "App/Model/ShortcutFacts.h"

#include "App/Model/SessionShortcut.h"
#include "App/Wording/Localized.h"

namespace vespra::shortcutFacts {

namespace {

    /// Does the same, for the desktop's own settings.
    constexpr std::string_view command = "vespractl toggle";

} // namespace

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
    return localized("These keys don't work on this Mac. Choose others.", {std::string{command}});
}

} // namespace vespra::shortcutFacts
