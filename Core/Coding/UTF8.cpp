#include "Core/Coding/UTF8.h"

namespace vespra {

namespace {

    struct LeadByte {
        std::size_t length = 0;
        // What the second byte may be: narrower than 80 to BF where a sequence would be overlong, a surrogate or
        // beyond U+10FFFF.
        unsigned char secondLowest = 0x80;
        unsigned char secondHighest = 0xBF;
    };

    LeadByte leadByte(unsigned char byte)
    {
        if (byte < 0x80)
            return {.length = 1};
        if (byte >= 0xC2 && byte <= 0xDF)
            return {.length = 2};
        if (byte >= 0xE0 && byte <= 0xEF)
            return {.length = 3,
                .secondLowest = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                .secondHighest = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
        if (byte >= 0xF0 && byte <= 0xF4)
            return {.length = 4,
                .secondLowest = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                .secondHighest = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
        return {};
    }

} // namespace

std::size_t leadingUTF8Length(std::string_view text)
{
    if (text.empty())
        return 0;
    const auto lead = leadByte(static_cast<unsigned char>(text[0]));
    if (lead.length > text.size())
        return 0;
    if (lead.length > 1) {
        const auto second = static_cast<unsigned char>(text[1]);
        if (second < lead.secondLowest || second > lead.secondHighest)
            return 0;
    }
    for (std::size_t i = 2; i < lead.length; ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
            return 0;
    return lead.length;
}

bool isUTF8(std::string_view text)
{
    while (!text.empty()) {
        const auto length = leadingUTF8Length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

void appendUTF8(std::string& text, char32_t scalar)
{
    const auto add = [&](char32_t byte) { text += static_cast<char>(byte); };
    const auto addTrailing = [&](int shift) { add(0x80 | ((scalar >> shift) & 0x3F)); };
    if (scalar < 0x80) {
        add(scalar);
    } else if (scalar < 0x800) {
        add(0xC0 | (scalar >> 6));
        addTrailing(0);
    } else if (scalar < 0x10000) {
        add(0xE0 | (scalar >> 12));
        addTrailing(6);
        addTrailing(0);
    } else {
        add(0xF0 | (scalar >> 18));
        addTrailing(12);
        addTrailing(6);
        addTrailing(0);
    }
}

} // namespace vespra
