#pragma once

#include "App/System/AppearanceMonitoring.h"
#include "App/System/GlobalShortcut.h"
#include "App/System/simulated/SimulatedMachine.h"
#include "Core/Lifetime.h"

#include <map>
#include <memory>
#include <string>

namespace vespra {

/// The appearance of a simulated laptop's desktop. Main thread only.
class SimulatedAppearance final : public AppearanceMonitoring {
public:
    explicit SimulatedAppearance(const std::shared_ptr<SimulatedMachine>& machine)
    {
        update(machine->state().appearance);
        machine->onChange(lifetime_.guard([this, &state = machine->state()] { update(state.appearance); }));
    }

private:
    Lifetime lifetime_;
};

/// The keyboard of a simulated laptop: whoever uses it presses every shortcut that there is. Main thread only.
class SimulatedShortcut final : public GlobalShortcut {
public:
    explicit SimulatedShortcut(SimulatedMachine& machine)
    {
        machine.onShortcut = lifetime_.guard([this] {
            // A copy: an action may set or clear shortcuts.
            for (const auto& [name, onKeyUp] : auto{actions_})
                onKeyUp();
        });
    }
    void set(Request request) override
    {
        actions_.insert_or_assign(request.name, std::move(request.onKeyUp));
        notify(request.onOutcome, Outcome{});
    }
    void clear(std::string_view name) override { actions_.erase(std::string{name}); }

private:
    std::map<std::string, std::function<void()>> actions_;
    Lifetime lifetime_;
};

} // namespace vespra
