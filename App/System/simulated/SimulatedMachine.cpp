#include "App/System/simulated/SimulatedMachine.h"

#include "Core/Lifetime.h"

namespace vespra {

std::expected<void, std::string> SimulatedMachine::set(const MachineSettings& settings)
{
    const auto change = changed(state_, settings);
    if (!change)
        return std::unexpected{change.error()};
    set(change->state);
    if (change->sleepsNow) {
        notify(onSleep, true);
        notify(onSleep, false);
    }
    return {};
}

void SimulatedMachine::set(const MachineState& next)
{
    if (next == state_)
        return;
    state_ = next;
    for (const auto& listener : listeners_)
        listener();
}

std::uint32_t SimulatedMachine::hold(Assertion assertion)
{
    assertions_.emplace(++lastAssertion_, std::move(assertion));
    return lastAssertion_;
}

} // namespace vespra
