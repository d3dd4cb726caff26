#pragma once

#include "App/Panel/PanelGeometry.h"

#include <functional>
#include <memory>
#include <optional>

namespace vespra {

class PanelFrame;
class PanelPresentation;
struct Theme;

/// Watches for clicks outside of the application while it lives.
class OutsideClickMonitor {
public:
    virtual ~OutsideClickMonitor() = default;
};

/// The window of the panel, as the system has it. It comes and goes as the presentation says. Main thread only.
class PanelWindow {
public:
    virtual ~PanelWindow() = default;

    /// Whether the application says where its windows go.
    virtual bool canBePlaced() const = 0;
    /// How large the content is to be, if it may be `maximumHeight` points high.
    virtual QSize contentSize(int maximumHeight) = 0;
    /// Takes it to the front, there; without a place, as an ordinary window where the system puts it.
    virtual void orderIn(const std::optional<PanelPlace>& place) = 0;
    /// Moves it while it is shown.
    virtual void place(const PanelPlace& place) = 0;
    /// Takes it off the screen.
    virtual void orderOut() = 0;
    /// Whether nothing can be before it.
    virtual bool isInFront() const = 0;

    /// `onClick` may end the monitor.
    virtual std::unique_ptr<OutsideClickMonitor> monitorOutsideClicks(std::function<void()> onClick) = 0;

    /// Escape.
    std::function<void()> onCancel;
    /// The user closes it as an ordinary window. It stays until it is ordered out.
    std::function<void()> onClose;
    /// The content has another size from now on.
    std::function<void()> onContentResize;
};

/// The system's own, around `frame`, which outlives it as all else does.
std::unique_ptr<PanelWindow> makePanelWindow(
    const Theme& theme, const PanelPresentation& presentation, PanelFrame& frame);

} // namespace vespra
