#include "App/Panel/PanelGeometry.h"

#include <algorithm>

namespace vespra::panelGeometry {

namespace {

    /// No bar is thicker: what is nearer to an edge sits in a bar there, also where the bar takes no room from windows.
    constexpr int thickestBar = 64;

    // One past the last point, as rectangles in real numbers have it.
    int bottomOf(const QRect& area) { return area.y() + area.height(); }
    int rightOf(const QRect& area) { return area.x() + area.width(); }

    /// At least `low`, also where `high` is less.
    int within(int value, int low, int high) { return std::max(low, std::min(value, high)); }

    int below(const PanelHook& hook) { return std::max(hook.visible.y(), bottomOf(hook.item)) + gap; }
    int above(const PanelHook& hook) { return std::min(bottomOf(hook.visible), hook.item.y()) - gap; }

    int alongBar(const PanelHook& hook, int width)
    {
        return within(hook.item.x() + (hook.item.width() - width) / 2,
            hook.visible.x() + inset,
            rightOf(hook.visible) - inset - width);
    }

    int alongSide(const PanelHook& hook, int height)
    {
        return within(hook.item.y(), hook.visible.y() + inset, bottomOf(hook.visible) - inset - height);
    }

    QPoint corner(const PanelHook& hook, ScreenEdge edge, QSize content)
    {
        const auto& [item, visible] = hook;
        switch (edge) {
        case ScreenEdge::top:
            return {alongBar(hook, content.width()), below(hook)};
        case ScreenEdge::bottom:
            return {alongBar(hook, content.width()), above(hook) - content.height()};
        case ScreenEdge::left:
            return {std::max(visible.x(), rightOf(item)) + gap, alongSide(hook, content.height())};
        case ScreenEdge::right:
            break;
        }
        return {std::min(rightOf(visible), item.x()) - gap - content.width(), alongSide(hook, content.height())};
    }

} // namespace

ScreenEdge edgeOf(const PanelHook& hook)
{
    const auto middle = hook.item.center();
    const auto& visible = hook.visible;
    const int top = middle.y() - visible.y(), bottom = bottomOf(visible) - middle.y();
    const int left = middle.x() - visible.x(), right = rightOf(visible) - middle.x();
    // The end of a bar is near a side too.
    const bool isInBar
        = std::min(top, bottom) < 0 || (std::min(top, bottom) < thickestBar && std::min(left, right) >= 0);
    if (!isInBar && std::min(left, right) < thickestBar)
        return left < right ? ScreenEdge::left : ScreenEdge::right;
    return top < bottom ? ScreenEdge::top : ScreenEdge::bottom;
}

int maximumHeight(const PanelHook& hook)
{
    switch (edgeOf(hook)) {
    case ScreenEdge::top:
        return bottomOf(hook.visible) - inset - below(hook);
    case ScreenEdge::bottom:
        return above(hook) - inset - hook.visible.y();
    case ScreenEdge::left:
    case ScreenEdge::right:
        break;
    }
    return hook.visible.height() - 2 * inset;
}

PanelPlace placed(const PanelHook& hook, QSize content)
{
    const auto edge = edgeOf(hook);
    return {.content = {corner(hook, edge, content), content}, .edge = edge};
}

PanelHook usualCorner(const QRect& screen, const QRect& visible)
{
    const bool isAtBottom = visible.y() == screen.y() && bottomOf(visible) < bottomOf(screen);
    return {.item = {rightOf(screen) - 1, isAtBottom ? bottomOf(screen) - 1 : screen.y(), 1, 1}, .visible = visible};
}

} // namespace vespra::panelGeometry
