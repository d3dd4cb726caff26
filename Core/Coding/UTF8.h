#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vespra {

/// The length in bytes, 1 to 4, of the well-formed UTF-8 sequence that `text` begins with; 0 if it begins with none.
std::size_t leadingUTF8Length(std::string_view text);

bool isUTF8(std::string_view text);

/// `scalar` is a Unicode scalar value: up to 0x10FFFF and no surrogate.
void appendUTF8(std::string& text, char32_t scalar);

} // namespace vespra
