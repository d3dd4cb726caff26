#pragma once

#include <QColor>
#include <QRectF>

#include <string_view>

class QPainter;

namespace vespra {

/// Draws the icon of this name, one of Resources/icons, in one colour into `area`. An unknown name draws nothing.
void drawIcon(QPainter& painter, std::string_view name, const QRectF& area, const QColor& color);

/// The brand mark, as wide as `area`, in its middle.
void drawMark(QPainter& painter, const QRectF& area, const QColor& color);
/// Width by height of the brand mark's artwork.
inline constexpr double markAspect = 456.7 / 252.13;

} // namespace vespra
