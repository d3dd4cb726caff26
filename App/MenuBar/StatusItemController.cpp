#include "App/MenuBar/StatusItemController.h"

#include "App/MenuBar/StatusItemContent.h"
#include "App/Model/AppModel.h"
#include "Core/Lifetime.h"

#include <QCoreApplication>

namespace vespra {

StatusItemController::StatusItemController(
    const SurfaceContext& context, StatusItem& item, AppSurfaces::StatusItemActions actions)
    : model_{context.model}
    , item_{item}
    , actions_{std::move(actions)}
    , loop_{context.mainLoop, [this] { item_.show(statusItemContent(model_, item_.features())); }}
{
    item_.onClick = [this](StatusItem::Click click) { clicked(click); };
    item_.onChoose = [this](StatusMenuAction action) { chosen(action); };
}

StatusItemController::~StatusItemController()
{
    item_.onClick = {};
    item_.onChoose = {};
}

void StatusItemController::clicked(StatusItem::Click click)
{
    switch (click) {
    case StatusItem::Click::primary:
        return notify(actions_.onToggle);
    case StatusItem::Click::secondary:
        return item_.popUpMenu();
    }
}

void StatusItemController::chosen(StatusMenuAction action)
{
    switch (action) {
    case StatusMenuAction::openPanel:
        return notify(model_.showPanel);
    case StatusMenuAction::toggleSession:
        return model_.toggleSession();
    case StatusMenuAction::openSettings:
        return notify(actions_.onSettings);
    case StatusMenuAction::quit:
        return QCoreApplication::quit();
    }
}

} // namespace vespra
