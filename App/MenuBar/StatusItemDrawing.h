#pragma once

#include "App/DesignSystem/Icon.h"

#include <QPointF>
#include <QRectF>

#include <optional>

class QColor;
class QPainter;

namespace vespra {

/// Distances inside the item's image, in points from its upper left corner: the mark fills it.
namespace statusImage {
    inline constexpr double width = 23, height = width / markAspect;
    inline constexpr QPointF dotCenter{2.75, 2.5};
    inline constexpr double dotSize = 6;
    /// Cut out of the mark, so that the dot stands clear of it.
    inline constexpr QRectF notch{-1.5, -1.75, 8.5, 8.5};
} // namespace statusImage

/// Where the dot's upper left corner belongs, from that of a button whose image takes `image`. The button's y grows
/// downwards if it `isFlipped`, else upwards from its lower edge; `buttonHeight` only counts then. Absent while the
/// image has no width.
std::optional<QPointF> statusDotOrigin(const QRectF& image, bool isFlipped, double buttonHeight);

/// The mark from the origin on, in points, with its notch if a session is active. What the notch takes away it takes
/// away from all that was drawn there.
void drawStatusMark(QPainter& painter, bool isActive, const QColor& color);

} // namespace vespra
