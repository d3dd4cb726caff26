#include "ControlProtocol/EndStatus.h"

#include <algorithm>
#include <array>

namespace vespra::controlProtocol {

namespace {

    struct EndStatus {
        std::string_view reason;
        int status;
    };
    // Statuses below 10 mean the same for every command.
    constexpr std::array endStatuses = std::to_array<EndStatus>({
        {"timeElapsed", 0},
        {"agentsFinished", 0},
        {"stoppedByUser", 10},
        {"lowBattery", 11},
        {"chargerDisconnected", 12},
        {"batteryTimeLimit", 13},
        {"closedLidTimeLimit", 14},
        {"overheating", 15},
        {"safetyCapReached", 16},
        {"systemSleep", 17},
        {"appTerminated", 18},
    });

} // namespace

int exitStatusOfEnd(std::string_view reason)
{
    const auto* const found = std::ranges::find(endStatuses, reason, &EndStatus::reason);
    return found == endStatuses.end() ? 1 : found->status;
}

} // namespace vespra::controlProtocol
