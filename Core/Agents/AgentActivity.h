#pragma once

#include "Core/RawValue.h"

namespace vespra {

/// What a session of an agent does. Whether waiting counts as busy is up to `AgentPolicy`.
enum class AgentActivity { idle, working, waitingForApproval };

template <>
inline constexpr auto rawValues<AgentActivity> = RawValueTable<AgentActivity, 3>{{
    {AgentActivity::idle, "idle"},
    {AgentActivity::working, "working"},
    {AgentActivity::waitingForApproval, "waitingForApproval"},
}};

/// Whether `one` is more of a reason to stay awake than `other`.
constexpr bool isBusier(AgentActivity one, AgentActivity other)
{
    const auto rank = [](AgentActivity activity) {
        return activity == AgentActivity::idle ? 0 : activity == AgentActivity::waitingForApproval ? 1 : 2;
    };
    return rank(one) > rank(other);
}

} // namespace vespra
