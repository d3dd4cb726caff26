#include "App/Panel/PanelController.h"

#include "App/Model/AppModel.h"
#include "App/System/ClosedLidController.h"

namespace vespra {

PanelController::PanelController(AppModel& model, PanelWindow& window, PanelPresentation& presentation)
    : model_{model}
    , window_{window}
    , presentation_{presentation}
{
    window_.onCancel = lifetime_.guard([this] { hide(); });
    window_.onContentResize = lifetime_.guard([this] { replace(); });
}

PanelController::~PanelController() = default;

void PanelController::toggle(const std::shared_ptr<PanelAnchor>& anchor)
{
    if (isVisible_)
        hide();
    else
        show(anchor);
}

void PanelController::show(const std::shared_ptr<PanelAnchor>& anchor)
{
    if (const auto& closedLid = model_.closedLid())
        closedLid->refreshStatus();
    highlight(false);
    isVisible_ = true;
    anchor_ = anchor;
    highlight(true);
    const auto place = placeNow();
    window_.orderIn(place);
    presentation_.show();
    outsideClickMonitor_.reset();
    if (place)
        outsideClickMonitor_ = window_.monitorOutsideClicks(lifetime_.guard([this] { hide(); }));
}

void PanelController::hide()
{
    outsideClickMonitor_.reset();
    highlight(false);
    if (std::exchange(isVisible_, false))
        presentation_.hide(lifetime_.guard([this] { window_.orderOut(); }));
}

std::optional<PanelPlace> PanelController::placeNow()
{
    const auto anchor = anchor_.lock();
    const auto hook = anchor && window_.canBePlaced() ? anchor->hook() : std::nullopt;
    if (!hook)
        return {};
    return panelGeometry::placed(*hook, window_.contentSize(panelGeometry::maximumHeight(*hook)));
}

/// The content has another height: it is to stay on the screen.
void PanelController::replace()
{
    if (isOrdinaryWindow())
        return;
    if (const auto place = placeNow())
        window_.place(*place);
}

void PanelController::highlight(bool highlighted)
{
    if (const auto anchor = anchor_.lock())
        anchor->setHighlighted(highlighted);
}

} // namespace vespra
