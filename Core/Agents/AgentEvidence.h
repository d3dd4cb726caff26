#pragma once

#include "Core/Session/AgentPolicy.h"

namespace vespra {

/// What looks beyond the agents' events while an agent session runs, and corrects the tracker. Main thread only.
class AgentEvidence {
public:
    virtual ~AgentEvidence() = default;

    /// Looks at once, and from now on.
    virtual void sessionDidBegin(const AgentPolicy& policy) = 0;
    /// The session is about to end: the last chance to say that an agent works after all.
    virtual void lastLook() = 0;
    virtual void sessionDidEnd() = 0;
};

} // namespace vespra
