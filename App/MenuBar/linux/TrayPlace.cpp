#include "App/MenuBar/linux/TrayPlace.h"

#include <algorithm>

namespace vespra {

namespace {

    /// Thicker than panels are: a place at the left edge and within this is none that a panel means.
    constexpr int thickestPanel = 64;
    /// As long and broad as items are in most panels.
    constexpr int usualItem = 28;

    /// Absent if the pixel is on no screen. Screens begin where they do in pixels.
    std::optional<QPoint> qtPoint(QPoint pixel, const std::vector<TrayScreen>& screens)
    {
        for (const auto& screen : screens) {
            const auto inside = QPointF{pixel - screen.geometry.topLeft()} / screen.scale;
            const auto point = screen.geometry.topLeft() + inside.toPoint();
            if (screen.geometry.contains(point))
                return point;
        }
        return {};
    }

} // namespace

std::optional<QPoint> clickedPlace(
    QPoint told, const std::optional<QPoint>& pointer, const std::vector<TrayScreen>& screens)
{
    if (pointer)
        return pointer;
    const bool isNonsense = told.x() == 0 && told.y() < thickestPanel;
    return isNonsense ? std::nullopt : qtPoint(told, screens);
}

QRect itemFrame(QPoint place, const TrayScreen& screen)
{
    const auto& all = screen.geometry;
    const auto& free = screen.available;
    const auto across = [&](int top, int bottom) {
        const int length = bottom - top + 1;
        return QRect{QPoint{place.x() - length / 2, top}, QSize{length, length}};
    };
    const auto along = [&](int left, int right) {
        const int length = right - left + 1;
        return QRect{QPoint{left, place.y() - length / 2}, QSize{length, length}};
    };
    if (place.y() < free.top())
        return across(all.top(), free.top() - 1);
    if (place.y() > free.bottom())
        return across(free.bottom() + 1, all.bottom());
    if (place.x() < free.left())
        return along(all.left(), free.left() - 1);
    if (place.x() > free.right())
        return along(free.right() + 1, all.right());
    QRect around{0, 0, usualItem, usualItem};
    around.moveCenter(place);
    around.moveTop(std::clamp(around.top(), all.top(), all.bottom() + 1 - usualItem));
    around.moveLeft(std::clamp(around.left(), all.left(), all.right() + 1 - usualItem));
    return around;
}

} // namespace vespra
