#include "App/MenuBar/StatusItemContent.h"

#include "App/Model/PanelFacts.h"
#include "App/Wording/Localized.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    std::string menuTitle(StatusMenuAction action, bool isActive)
    {
        switch (action) {
        case StatusMenuAction::openPanel:
            return localized("Open %1", {Brand::appName()});
        case StatusMenuAction::toggleSession:
            return isActive ? localized("Stop") : localized("Start");
        case StatusMenuAction::openSettings:
            return localized("Settings…");
        case StatusMenuAction::quit:
            break;
        }
        return localized("Quit %1", {Brand::appName()});
    }

    /// Tells the time left in minutes, so it follows no more than those.
    std::string sessionInWords(const AppModel& model)
    {
        const auto* session = model.coordinator().state().activeSession();
        if (!session)
            return localized("No session is running.");
        if (!panelFacts::countsDown(*session))
            return panelFacts::sessionClock(*session, session->startedAt).spoken;
        return panelFacts::sessionClock(*session, model.clock().now(*session->endsAt, 1min)).spoken;
    }

} // namespace

StatusItemContent statusItemContent(const AppModel& model, const StatusItem::Features& features)
{
    StatusItemContent content;
    content.isActive = model.coordinator().state().isActive();
    content.accessibilityLabel
        = content.isActive ? localized("%1, session active", {Brand::appName()}) : Brand::appName();
    if (features.hasTitle)
        content.title = panelFacts::remainingTimeTitle(model);
    if (features.hasToolTip)
        content.toolTip = sessionInWords(model);
    for (const auto action : features.menu)
        content.menu.push_back({action, menuTitle(action, content.isActive)});
    return content;
}

} // namespace vespra
