#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vespra {

/// Whether `c` is ASCII and may stand unescaped in a JSON string.
constexpr bool isPlainInJSON(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80 && byte != '"' && byte != '\\';
}

/// How many bytes at the beginning of `text` are plain. Eight at a time: nearly all bytes of a settings file are.
inline std::size_t plainLength(std::string_view text)
{
    constexpr std::uint64_t ones = 0x0101010101010101, highBits = 0x8080808080808080;
    std::size_t length = 0;
    for (; length + 8 <= text.size(); length += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + length, 8);
        // A byte's high bit ends up set if it is zero after the exclusive or, below the space, or set to begin with.
        const auto quotes = (word ^ ones * '"') - ones;
        const auto backslashes = (word ^ ones * '\\') - ones;
        const auto controls = word - ones * 0x20;
        if ((quotes | backslashes | controls | word) & highBits)
            break;
    }
    while (length < text.size() && isPlainInJSON(text[length]))
        ++length;
    return length;
}

/// How many bytes stand in `text` before its first quote or backslash, whatever they are.
inline std::size_t lengthToQuoteOrBackslash(std::string_view text)
{
    constexpr std::uint64_t ones = 0x0101010101010101, highBits = 0x8080808080808080;
    // The lowest byte with its high bit set is the first that is `c`; above it there may be others that are not.
    const auto places = [](std::uint64_t word, char c) {
        const auto difference = word ^ ones * static_cast<unsigned char>(c);
        return (difference - ones) & ~difference & highBits;
    };
    std::size_t length = 0;
    for (; length + 8 <= text.size(); length += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + length, 8);
        const auto found = places(word, '"') | places(word, '\\');
        if (found != 0 && std::endian::native == std::endian::little)
            return length + static_cast<std::size_t>(std::countr_zero(found)) / 8;
        if (found != 0)
            break;
    }
    while (length < text.size() && text[length] != '"' && text[length] != '\\')
        ++length;
    return length;
}

} // namespace vespra
