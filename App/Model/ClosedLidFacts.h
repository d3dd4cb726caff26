#pragma once

#include "Core/ClosedLid/ClosedLidStatus.h"

#include <optional>
#include <string>
#include <vector>

namespace vespra {
class AppModel;
}

/// What the panel shows of closed-lid mode, as values.
namespace vespra::panelFacts {

/// What the user can do about the privileged component.
enum class ComponentAction { setUp, approve, retry };
std::string title(ComponentAction action);

/// A line of the checklist.
struct CheckItem {
    ClosedLidChecklist::Item state;
    std::string text;
    bool operator==(const CheckItem&) const = default;
};

/// The row of closed-lid mode, and what it opens into.
struct ClosedLidRow {
    bool isOn;
    bool canSwitch;
    std::string status;
    /// Stands in the place of the switch while the component needs the user.
    std::optional<ComponentAction> action;
    bool canAct = true; // not while the action is under way
    /// Empty while everything is as it should be.
    std::vector<CheckItem> checks;
    bool operator==(const ClosedLidRow&) const = default;
};
ClosedLidRow closedLidRow(const AppModel& model);

/// Every line of the checklist as it is now; always as many.
std::vector<CheckItem> closedLidChecks(const AppModel& model);

} // namespace vespra::panelFacts
