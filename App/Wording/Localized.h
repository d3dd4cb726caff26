#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vespra {

/// The text to show for an English literal, which is its own key. "%1" to "%9" stand for `arguments`.
std::string localized(std::string_view literal, std::initializer_list<std::string> arguments = {});

} // namespace vespra
