#include "Core/KeyCombination.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vespra {

namespace {

    struct Modifier {
        std::string_view name;
        bool KeyCombination::* isWanted;
    };
    constexpr std::array modifiers{
        Modifier{"ctrl", &KeyCombination::control},
        Modifier{"alt", &KeyCombination::alt},
        Modifier{"shift", &KeyCombination::shift},
        Modifier{"super", &KeyCombination::super},
    };

    bool isLetterOrDigit(char key) { return (key >= 'a' && key <= 'z') || (key >= '0' && key <= '9'); }

    /// False if there is no such modifier, or it was there already.
    bool add(KeyCombination& keys, std::string_view name)
    {
        const auto* const modifier = std::ranges::find(modifiers, name, &Modifier::name);
        return modifier != modifiers.end() && !std::exchange(keys.*modifier->isWanted, true);
    }

} // namespace

bool KeyCombination::canBeGlobal() const { return isLetterOrDigit(key) && (control || alt || super); }

std::string text(const KeyCombination& keys)
{
    std::string text;
    for (const auto& [name, isWanted] : modifiers)
        if (keys.*isWanted)
            text.append(name).append("+");
    return text + keys.key;
}

std::optional<KeyCombination> keyCombination(std::string_view text)
{
    KeyCombination keys;
    for (auto plus = text.find('+'); plus != std::string_view::npos; plus = text.find('+')) {
        if (!add(keys, text.substr(0, plus)))
            return {};
        text.remove_prefix(plus + 1);
    }
    if (text.size() != 1)
        return {};
    keys.key = text.front();
    return keys.canBeGlobal() ? std::optional{keys} : std::nullopt;
}

} // namespace vespra
