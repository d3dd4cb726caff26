#pragma once

#include "Core/Agents/AgentEvidence.h"
#include "Core/Agents/AgentTracker.h"
#include "Core/Scheduling/WallClock.h"
#include "Core/Session/SessionEndCondition.h"

#include <memory>

namespace vespra {

namespace phase {
    /// The user has taken the end out of the agents' hands: `keepAwake`.
    struct KeptAwake : Case {
        static constexpr std::string_view name = "keptAwake";
    };
    /// All agents are done; the grace delay runs.
    struct Finishing {
        static constexpr std::string_view name = "finishing";
        Instant endsAt;
        bool operator==(const Finishing&) const = default;
    };
    struct Working : Case {
        static constexpr std::string_view name = "working";
    };
    /// No agent has worked yet.
    struct WaitingForAgents : Case {
        static constexpr std::string_view name = "waitingForAgents";
    };
} // namespace phase

/// Ends an agent session once every agent has been done for the grace delay, but not before some agent has worked.
/// Serves one session. Main thread only; made with `std::make_shared`.
class AgentEndCondition final : public SessionEndCondition, public std::enable_shared_from_this<AgentEndCondition> {
public:
    using Phase = std::variant<phase::KeptAwake, phase::Finishing, phase::Working, phase::WaitingForAgents>;

    /// All but `policy` outlive it. Without `evidence` the events alone count.
    AgentEndCondition(
        AgentTracker& tracker, const AgentPolicy& policy, const WallClock& clock, AgentEvidence* evidence = nullptr)
        : tracker_{tracker}
        , policy_{policy}
        , clock_{clock}
        , evidence_{evidence}
    {
    }

    Phase phase() const;
    /// From now on the agents do not end this session; every other rule still applies.
    void keepAwake();

    void sessionDidBegin(Instant now) override;
    std::optional<EndReason> evaluate(Instant now) override;
    std::optional<Instant> nextDeadline(Instant now) override;
    void sessionDidEnd() override;

private:
    struct State {
        /// Some agent has been busy since the session began.
        bool hasSeenWork = false;
        /// When all agents became done, while the grace delay runs.
        std::optional<Instant> idleSince;
        bool isKeptAwake = false;
        bool operator==(const State&) const = default;
    };

    void refresh(Instant now);
    std::optional<Instant> finishesAt() const;
    bool isDue(Instant now) const;

    AgentTracker& tracker_;
    AgentPolicy policy_;
    const WallClock& clock_;
    AgentEvidence* evidence_;
    Observed<State> state_;
};

} // namespace vespra
