#pragma once

// Control/Scenario: `vespractl simulate`: scenarios are read from files and played in virtual time.

#include "Core/Agents/AgentKind.h"
#include "Core/Agents/HookInput.h"
#include "Core/Session/SessionEvent.h"
#include "Core/Session/SessionSettings.h"

#include <expected>
#include <string>
#include <variant>
#include <vector>

namespace vespra {

/// What one step of a scenario does.
namespace step {
    struct Start {
        SessionPlan plan;
        SessionOptions options;
    };
    struct Stop {
        EndReason reason;
    };
    struct Extend { };
    /// Of the running session's agent end condition.
    struct KeepAwake { };
    struct KeepsDisplayAwake {
        bool value;
    };
    struct ClosedLid {
        bool enabled;
    };
    struct Settings {
        SessionSettings settings;
    };
    struct Power {
        PowerSnapshot snapshot;
    };
    struct Thermal {
        ThermalLevel level;
    };
    struct Helper {
        HelperStatus status;
        bool lidSleepDisabled;
    };
    struct Lid {
        bool closedWithoutExternalDisplay;
    };
    struct Hook {
        AgentKind agent;
        HookInput input;
    };
    struct Show {
        bool closedLidRequested;
    };
} // namespace step

using StepAction = std::variant<step::Start, step::Stop, step::Extend, step::KeepAwake, step::KeepsDisplayAwake,
    step::ClosedLid, step::Settings, step::Power, step::Thermal, step::Helper, step::Lid, step::Hook, step::Show>;

struct ScenarioStep {
    Instant date;
    StepAction action;
};

/// A course of events to play through the engine in virtual time.
struct Scenario {
    Calendar calendar;
    Instant start;
    SessionSettings settings;
    SessionConditions conditions;
    std::vector<ScenarioStep> steps; // dates never decrease
    Instant until; // deadlines fire up to and including this date
};

/// Reads a scenario's JSON text. The error is one line that names the place: "steps[3].at: must not decrease".
std::expected<Scenario, std::string> parsedScenario(std::string_view text);

} // namespace vespra
