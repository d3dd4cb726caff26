#include "App/Model/ClosedLidFacts.h"

#include "App/Model/AppModel.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Localized.h"
#include "Core/Session/Guardrails.h"

namespace vespra::panelFacts {

namespace {

    using Item = ClosedLidChecklist::Item;

    /// What a status asks of the user, and whether the card opens.
    struct Attention {
        std::optional<ComponentAction> action;
        bool isOpen = false;
    };

    Attention attention(const ClosedLidStatus& status, bool isWanted)
    {
        const auto whenWanted
            = [isWanted](ComponentAction action) { return isWanted ? Attention{action, true} : Attention{}; };
        return match(
            status,
            [](const closedLid::Unsupported&) { return Attention{}; },
            // Its line says all of it, and the note above the button once more.
            [](const closedLid::Blocked&) { return Attention{}; },
            [&](const closedLid::NotConfigured&) { return whenWanted(ComponentAction::setUp); },
            [](const closedLid::AwaitingApproval&) { return Attention{ComponentAction::approve, true}; },
            [&](const closedLid::HelperFailed&) { return whenWanted(ComponentAction::retry); },
            [](const closedLid::Off&) { return Attention{}; },
            [](const closedLid::Ready&) { return Attention{}; },
            [](const closedLid::Verifying&) { return Attention{{}, true}; },
            [](const closedLid::CanCloseLid&) { return Attention{}; });
    }

    std::string componentText(const ClosedLidStatus& status, Item item)
    {
        if (item == Item::ok)
            return localized("Component installed");
        if (item == Item::pending)
            return localized("Component needs your approval");
        return std::holds_alternative<closedLid::NotConfigured>(status) ? localized("Component not set up")
                                                                        : message(status);
    }

    std::string powerText(const AppModel& model)
    {
        const auto found = powerViolation(
            /*engaged=*/true, model.coordinator().conditions().power, model.coordinator().settings());
        return found ? message(closedLid::Blocked{*found}) : localized("Power");
    }

    std::string sessionText(const AppModel& model, const ClosedLidChecklist& checklist)
    {
        if (checklist.session == Item::ok)
            return localized("Sleep is switched off");
        if (!model.isClosedLidOn())
            return localized("Closed-lid mode is off");
        if (!model.coordinator().state().isActive())
            return localized("Starts with the session");
        return checklist.helper == Item::ok ? localized("Sleep is being switched off")
                                            : localized("Waits for the component");
    }

    std::vector<CheckItem> checks(const AppModel& model, const ClosedLidStatus& status)
    {
        const auto checklist = model.coordinator().closedLidChecklist();
        return {
            {checklist.helper, componentText(status, checklist.helper)},
            {checklist.power, powerText(model)},
            {checklist.thermal,
                checklist.thermal == Item::ok ? localized("Temperature")
                                              : message(closedLid::Blocked{blocker::TooHot{}})},
            {checklist.session, sessionText(model, checklist)},
        };
    }

} // namespace

std::string title(ComponentAction action)
{
    switch (action) {
    case ComponentAction::setUp:
        return localized("Set Up…");
    case ComponentAction::approve:
        return localized("Open System Settings");
    case ComponentAction::retry:
        break;
    }
    return localized("Try Again");
}

ClosedLidRow closedLidRow(const AppModel& model)
{
    const bool isOn = model.isClosedLidOn();
    const auto status = model.coordinator().closedLidStatus(isOn);
    const auto [action, isOpen] = attention(status, isOn);
    const bool isRegistering = model.closedLid() && model.closedLid()->isRegistering();
    return {
        .isOn = isOn,
        .canSwitch = isOn || !std::holds_alternative<closedLid::Unsupported>(status),
        .status = isRegistering ? localized("Checking…") : message(status),
        .action = action,
        .canAct = !isRegistering,
        .checks = isOpen ? checks(model, status) : std::vector<CheckItem>{},
    };
}

std::vector<CheckItem> closedLidChecks(const AppModel& model)
{
    return checks(model, model.coordinator().closedLidStatus(model.isClosedLidOn()));
}

} // namespace vespra::panelFacts
