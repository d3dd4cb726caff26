#include "Core/Coding/DisplayText.h"

#include "Core/Coding/UTF8.h"

namespace vespra {

namespace {

    /// `character` is one in UTF-8.
    bool canBeShown(std::string_view character)
    {
        if (character.size() == 1)
            return character[0] >= ' ' && character[0] != '\x7F';
        const auto within = [&](std::string_view first, std::string_view last) {
            return character.size() == first.size() && character >= first && character <= last;
        };
        return !within("\u0080", "\u009F") // the second half of the control characters
            && !within("\u2028", "\u202E") // separators of lines and paragraphs; directions
            && !within("\u2066", "\u2069"); // directions
    }

} // namespace

std::string displayText(std::string_view text)
{
    constexpr std::string_view replacement = "\uFFFD";
    std::string shown;
    while (!text.empty()) {
        const auto length = leadingUTF8Length(text);
        const auto character = text.substr(0, length);
        shown += length > 0 && canBeShown(character) ? character : replacement;
        text.remove_prefix(length > 0 ? length : 1);
    }
    return shown;
}

} // namespace vespra
