#pragma once

#include <expected>
#include <string>

namespace vespra {

/// Readies the environment for windows: before the application object is made, which would end the program without a
/// display. Fails with a sentence if there is none that answers.
std::expected<void, std::string> prepareDisplay();

} // namespace vespra
