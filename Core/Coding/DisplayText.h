#pragma once

#include <string>
#include <string_view>

namespace vespra {

/// `text` of another program as a terminal or a view can show it on one line: U+FFFD stands for every control
/// character, for what breaks lines or turns the direction of writing, and for every byte that is not UTF-8.
std::string displayText(std::string_view text);

} // namespace vespra
