#pragma once

// App/Panel: the window that drops from the item in the menu bar: where it goes, how it comes and goes, its ground and
// its shadow. What it shows comes from outside.

#include "App/Panel/PanelPresentation.h"
#include "App/Panel/PanelWindow.h"
#include "Core/Lifetime.h"

namespace vespra {

class AppModel;

/// What the panel hangs from: the item's button. Main thread only.
class PanelAnchor {
public:
    virtual ~PanelAnchor() = default;
    /// Absent where there is nothing to hang from.
    virtual std::optional<PanelHook> hook() const = 0;
    virtual void setHighlighted(bool highlighted) = 0;
};

/// Shows and hides the panel. Main thread only.
class PanelController {
public:
    /// All of it outlives the controller.
    PanelController(AppModel& model, PanelWindow& window, PanelPresentation& presentation);
    ~PanelController();
    PanelController(const PanelController&) = delete;
    PanelController& operator=(const PanelController&) = delete;

    void toggle(const std::shared_ptr<PanelAnchor>& anchor);
    /// Under the anchor, which is held weakly; without a hook, as an ordinary window. One that is shown comes to the
    /// front.
    void show(const std::shared_ptr<PanelAnchor>& anchor);
    void hide();
    /// Until it is hidden; what takes time to disappear is not visible any more.
    bool isVisible() const { return isVisible_; }
    /// It stands for itself, with nothing to hang from.
    bool isOrdinaryWindow() const { return isVisible_ && !outsideClickMonitor_; }

private:
    /// Absent: as an ordinary window.
    std::optional<PanelPlace> placeNow();
    void replace();
    void highlight(bool highlighted);

    AppModel& model_;
    PanelWindow& window_;
    PanelPresentation& presentation_;
    std::unique_ptr<OutsideClickMonitor> outsideClickMonitor_;
    std::weak_ptr<PanelAnchor> anchor_;
    bool isVisible_ = false;
    Lifetime lifetime_;
};

} // namespace vespra
