#include "App/Model/ComponentFacts.h"

#include "App/System/ClosedLidController.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Localized.h"

namespace vespra::componentFacts {

using panelFacts::ComponentAction;

Status status(const HelperStatus& component, bool isApplied, bool isRegistering)
{
    if (isRegistering)
        return {localized("Checking…"), Mood::waiting};
    return match(
        component,
        [](const helper::Unsupported& unsupported) {
            return Status{message(closedLid::Unsupported{unsupported.reason}), Mood::unavailable};
        },
        [](const helper::NotInstalled&) {
            return Status{localized("Not installed"), Mood::unavailable, ComponentAction::setUp};
        },
        [](const helper::AwaitingApproval&) {
            return Status{localized("Waiting for your approval"), Mood::waiting, ComponentAction::approve};
        },
        [](const helper::Failed&) {
            return Status{localized("Not responding"), Mood::problem, ComponentAction::retry};
        },
        [&](const helper::Ready&) {
            return isApplied ? Status{localized("In use"), Mood::inUse} : Status{localized("Installed"), Mood::fine};
        });
}

Status status(const AppModel& model)
{
    const auto& controller = model.closedLid();
    if (!controller)
        return status(helper::NotInstalled{}, /*isApplied=*/false, /*isRegistering=*/true);
    return status(controller->status(), controller->isApplied(), controller->isRegistering());
}

void perform(AppModel& model, ComponentAction action)
{
    const auto& controller = model.closedLid();
    if (!controller)
        return;
    switch (action) {
    case ComponentAction::setUp:
        return controller->install();
    case ComponentAction::approve:
        return controller->openApproval();
    case ComponentAction::retry:
        return controller->refreshStatus();
    }
}

} // namespace vespra::componentFacts
