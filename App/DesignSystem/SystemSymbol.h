#pragma once

#include <QImage>

#include <string_view>

namespace vespra {

/// The system's own drawing of this symbol, in black, in the middle of a square that is `pixels` wide. Null where the
/// system has none. Main thread only.
QImage systemSymbol(std::string_view name, int pixels);

} // namespace vespra
