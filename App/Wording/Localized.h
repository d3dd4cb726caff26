#pragma once

// App/Wording: values in the user's words and language: durations, times, sessions, agents and the closed lid.

#include <initializer_list>
#include <string>
#include <string_view>

namespace vespra {

/// The context under which Qt's translators are asked.
inline constexpr const char* translationContext = "Vespra";

/// The text to show for an English literal: as this system says it (`systemText`), then in the user's language if a
/// translator that the application has installed knows it. "%1" to "%9" stand for `arguments`. Any thread.
std::string localized(std::string_view literal, std::initializer_list<std::string> arguments = {});

} // namespace vespra
