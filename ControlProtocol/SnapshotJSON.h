#pragma once

#include "Core/Agents/AgentEndCondition.h"
#include "Core/Coding/JSON.h"
#include "Core/Session/SessionCoordinator.h"

#include <functional>

namespace vespra {

/// How a snapshot writes dates: as offsets in a scenario, as text for a running application.
using DateWriter = std::function<JSON(Instant)>;

/// Rounded to 6 decimals.
JSON roundedJSON(Seconds length);

/// One line without spaces. Numbers are the shortest that read back the same, without exponent from 0.0001 on.
std::string dumped(const JSON& json);

/// "reason", and "level" where the reason has one.
JSON endReasonJSON(const EndReason& reason);
/// The same for a refusal, under "refused".
JSON refusalJSON(const StartRefusal& refusal);
/// Its case name; of an unsupported one, the reason.
JSON helperStatusJSON(const HelperStatus& status);
JSON sessionEventJSON(const SessionEvent& event, const DateWriter& date);

/// What a snapshot shows beside the coordinator.
struct SnapshotContext {
    bool closedLidRequested;
    std::optional<Instant> deadline; // the coordinator's one pending deadline
    const AgentEndCondition* condition; // nothing when none is attached
    const AgentTracker& tracker;
};
JSON snapshotJSON(const SessionCoordinator& coordinator, const SnapshotContext& context, const DateWriter& date);

} // namespace vespra
