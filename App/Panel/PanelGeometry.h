#pragma once

#include <QRect>

namespace vespra {

/// What the panel hangs from, in the coordinates of the screens: from the top down.
struct PanelHook {
    QRect item;
    /// What windows may take of the item's screen.
    QRect visible;
    bool operator==(const PanelHook&) const = default;
};

/// The edge of the screen that an item sits at.
enum class ScreenEdge { top, bottom, left, right };

/// Where the content of the panel goes; its shadow lies around it.
struct PanelPlace {
    QRect content;
    /// What it comes from.
    ScreenEdge edge = ScreenEdge::top;
    bool operator==(const PanelPlace&) const = default;
};

namespace panelGeometry {
    /// Points between the panel and the sides of the screen.
    inline constexpr int inset = 8;
    /// Points between the panel and what it hangs from.
    inline constexpr int gap = 4;

    ScreenEdge edgeOf(const PanelHook& hook);

    /// The largest height that leaves all of the content on the screen.
    int maximumHeight(const PanelHook& hook);

    /// In the middle under the item, or over it, or beside it towards the middle of the screen; moved along the edge
    /// until it is on the screen. `content` is no higher than `maximumHeight`.
    PanelPlace placed(const PanelHook& hook, QSize content);

    /// Where trays mostly are, for an item that does not say where it is: the right end of the bar of the screen.
    PanelHook usualCorner(const QRect& screen, const QRect& visible);
} // namespace panelGeometry

} // namespace vespra
