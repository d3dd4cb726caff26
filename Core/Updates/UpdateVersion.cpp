#include "Core/Updates/UpdateVersion.h"

#include <algorithm>

namespace vespra {

namespace {

    bool isDigit(char sign) { return sign >= '0' && sign <= '9'; }
    bool isLetter(char sign) { return (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z'); }

    /// The signs of one kind at the front of `text`, which they leave.
    std::string_view taken(std::string_view& text, bool (*isOfKind)(char))
    {
        const auto end = std::ranges::find_if_not(text, isOfKind);
        const auto part = text.substr(0, static_cast<std::size_t>(end - text.begin()));
        text.remove_prefix(part.size());
        return part;
    }

    /// A number or a word.
    struct Part {
        enum class Kind { word, end, number };
        Kind kind = Kind::end; // in this order
        std::string_view text; // of a number without leading zeros
    };

    Part nextPart(std::string_view& text)
    {
        taken(text, [](char sign) { return !isDigit(sign) && !isLetter(sign); });
        if (text.empty())
            return {};
        if (isLetter(text.front()))
            return {Part::Kind::word, taken(text, isLetter)};
        auto number = taken(text, isDigit);
        number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
        return {Part::Kind::number, number};
    }

    std::strong_ordering compare(const Part& left, const Part& right)
    {
        if (left.kind != right.kind)
            return left.kind <=> right.kind;
        if (left.kind == Part::Kind::number && left.text.size() != right.text.size())
            return left.text.size() <=> right.text.size();
        return left.text <=> right.text;
    }

} // namespace

std::strong_ordering compareVersions(std::string_view left, std::string_view right)
{
    while (true) {
        const auto first = nextPart(left), second = nextPart(right);
        if (const auto order = compare(first, second); order != 0 || first.kind == Part::Kind::end)
            return order;
    }
}

} // namespace vespra
