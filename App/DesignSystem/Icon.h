#pragma once

#include <QColor>
#include <QRectF>

#include <string_view>

class QPainter;

namespace vespra {

/// Draws the icon of this name in one colour into `area`: the system's symbol where it has one, else the one of
/// Resources/icons. An unknown name draws nothing, with a warning.
void drawIcon(QPainter& painter, std::string_view name, const QRectF& area, const QColor& color);

/// The brand mark, as wide as `area`, in its middle.
void drawMark(QPainter& painter, const QRectF& area, const QColor& color);
/// Width by height of the brand mark's artwork.
inline constexpr double markAspect = 456.7 / 252.13;

/// The application's own icon: the mark on an evening sky, in the square `area`.
void drawEmblem(QPainter& painter, const QRectF& area);

} // namespace vespra
