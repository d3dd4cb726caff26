#pragma once

#include "App/Model/AppModel.h"
#include "App/Model/ClosedLidFacts.h"

/// What is shown of closed-lid mode's component, as values. Followed by an observation loop that calls them. Main
/// thread only.
namespace vespra::componentFacts {

enum class Mood { fine, inUse, waiting, problem, unavailable };

/// How the component is.
struct Status {
    std::string text;
    Mood mood;
    /// Absent where there is nothing to do.
    std::optional<panelFacts::ComponentAction> action = {};
    bool operator==(const Status&) const = default;
};
/// `isApplied`: it keeps the computer awake now. `isRegistering`: it is being set up or removed.
Status status(const HelperStatus& component, bool isApplied, bool isRegistering);
/// As it is now.
Status status(const AppModel& model);

void perform(AppModel& model, panelFacts::ComponentAction action);

} // namespace vespra::componentFacts
