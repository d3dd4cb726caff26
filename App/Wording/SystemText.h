#pragma once

#include <string_view>

namespace vespra {

/// The English literal as this system says it. Literals speak of a Mac; elsewhere those that do have their own text
/// here, and every other literal is its own. Without Qt, for terminal programs too. Any thread.
std::string_view systemText(std::string_view literal);

} // namespace vespra
