#include "Control/Scenario/ScenarioPlayer.h"
#include "Core/Agents/AgentEndCondition.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Core/Session/SessionCoordinator.h"
#include "Tests/Support/FakeMonitors.h"

#include <benchmark/benchmark.h>

namespace {

using namespace vespra;

const SessionConditions onCharger{.power = charger(80), .helper = helper::Ready{}};

Calendar utc() { return Calendar::inZone("UTC").value(); }

void machineUpdate(benchmark::State& state)
{
    SessionMachine machine{{}, utc()};
    const Instant start;
    [[maybe_unused]] const auto started = machine.start(plan::Timer{24h}, {}, onCharger, start);
    for (auto _ : state)
        benchmark::DoNotOptimize(machine.update(onCharger, start + 1s));
}
BENCHMARK(machineUpdate);

struct Session {
    VirtualTime time;
    FakePowerSource power{charger(80)};
    FakeThermal thermal;
    AgentTracker tracker;
    SessionCoordinator coordinator{{},
        utc(),
        SessionEnvironment{.clock = time, .scheduler = time, .power = power, .thermal = thermal},
        helper::Ready{}};

    void start(const SessionPlan& plan)
    {
        const auto condition = std::make_shared<AgentEndCondition>(tracker, AgentPolicy{}, time);
        [[maybe_unused]] const auto started = coordinator.start(plan, {}, condition);
    }
};

/// One reading: evaluates every rule and sets the deadline anew.
void coordinatorReevaluate(benchmark::State& state)
{
    Session session;
    session.start(plan::Agent{12h});
    for (auto _ : state)
        session.power.report(charger(80));
}
BENCHMARK(coordinatorReevaluate);

/// An event of the youngest of so many agent sessions, while an agent session runs.
void trackerRecord(benchmark::State& state)
{
    Session session;
    session.start(plan::Agent{12h});
    AgentEvent event{.signal = AgentSignal::finished, .date = session.time.now()};
    for (int i = 0; i < state.range(0); ++i) {
        event.sessionID = "0f8fad5b-d9cb-469f-a165-" + std::to_string(i);
        session.tracker.record(event);
    }
    for (auto _ : state)
        session.tracker.record(event);
}
BENCHMARK(trackerRecord)->Arg(1)->Arg(100)->Arg(10'000);

/// A day with an agent session: 24 hours of events every ten minutes, warnings and the end.
std::string dayOfWork()
{
    std::string steps = R"({"at":0,"start":{"plan":{"agent":{"safetyCap":86400}}}})";
    for (int at = 60; at < 86'000; at += 600)
        steps += R"(,{"at":)" + std::to_string(at)
            + R"(,"hook":{"agent":"claude","input":{"hook_event_name":"PostToolUse","session_id":"a","cwd":"/x"}}})";
    return R"({"steps":[)" + steps + R"(,{"at":86000,"show":true}],"until":90000})";
}

void scenarioRead(benchmark::State& state)
{
    const auto text = dayOfWork();
    for (auto _ : state)
        benchmark::DoNotOptimize(parsedScenario(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(scenarioRead)->Unit(benchmark::kMicrosecond);

void scenarioPlay(benchmark::State& state)
{
    const auto scenario = parsedScenario(dayOfWork()).value();
    for (auto _ : state)
        play(scenario, [](std::string_view line) { benchmark::DoNotOptimize(line); });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * scenario.steps.size()));
}
BENCHMARK(scenarioPlay)->Unit(benchmark::kMicrosecond);

} // namespace
