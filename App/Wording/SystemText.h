#pragma once

#include <string_view>

namespace vespra {

/// The English text for this system. Literals speak of a Mac; other systems have replacements for those here, and use
/// all others unchanged. Without Qt, for terminal programs too. Any thread.
std::string_view systemText(std::string_view literal);

} // namespace vespra
