#pragma once

#include "App/DesignSystem/Theme.h"

namespace vespra {

/// Runs `block` now, and again whenever something that it has read has changed, for as long as `widget` lives.
void follow(QWidget& widget, const Theme& theme, std::function<void()> block);

} // namespace vespra
