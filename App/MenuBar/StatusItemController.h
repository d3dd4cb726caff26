#pragma once

#include "App/Launch/AppSurfaces.h"
#include "App/MenuBar/StatusItem.h"
#include "Core/Observation/ObservationLoop.h"

namespace vespra {

/// Has the item show the session and carries out what is clicked, as long as it lives. Main thread only.
class StatusItemController {
public:
    /// All but the actions outlive it.
    StatusItemController(const SurfaceContext& context, StatusItem& item, AppSurfaces::StatusItemActions actions);
    ~StatusItemController();
    StatusItemController(const StatusItemController&) = delete;
    StatusItemController& operator=(const StatusItemController&) = delete;

private:
    void clicked(StatusItem::Click click);
    void chosen(StatusMenuAction action);

    AppModel& model_;
    StatusItem& item_;
    AppSurfaces::StatusItemActions actions_;
    ObservationLoop loop_;
};

} // namespace vespra
