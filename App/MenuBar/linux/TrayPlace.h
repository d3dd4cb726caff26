#pragma once

#include <QPoint>
#include <QRect>

#include <optional>
#include <vector>

namespace vespra {

/// A screen as Qt lays it out.
struct TrayScreen {
    QRect geometry;
    /// What panels leave to windows.
    QRect available;
    /// Pixels a point.
    double scale = 1;
};

/// Where the item was clicked, in Qt's coordinates. `told` is what the panel says, in pixels: a place on a screen, or
/// nonsense such as (0, 28). `pointer` is where the pointer is; absent where an application cannot know. Absent if
/// neither tells.
std::optional<QPoint> clickedPlace(
    QPoint told, const std::optional<QPoint>& pointer, const std::vector<TrayScreen>& screens);

/// What the item takes of the screen around a place on it: as much as the panel there is thick. Where windows may be,
/// for the panel hides or the desktop does not tell of it, as much as items take in most panels.
QRect itemFrame(QPoint place, const TrayScreen& screen);

} // namespace vespra
