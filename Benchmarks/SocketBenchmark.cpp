#include "App/Agents/AgentSocketServer.h"
#include "Core/Agents/AgentTracker.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Tests/Support/LocalClient.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <benchmark/benchmark.h>

using namespace vespra;

namespace {

/// An agent's event on its whole way: a client connects, writes and closes, the server reads, and the tracker records
/// on the main loop.
class Road {
public:
    Road() { server_.start(); }

    void send(const std::string& bytes) const { LocalClient{path_}.write(bytes); }
    void waitUntilRecorded(std::int64_t events)
    {
        loop_.runUntil([&] { return recorded_ >= events; });
        recorded_ -= events;
    }

private:
    TemporaryDirectory directory_;
    std::string path_ = directory_ / "agent.sock";
    ManualMainLoop loop_;
    SystemClock clock_;
    AgentTracker tracker_;
    std::int64_t recorded_ = 0;
    AgentSocketServer server_{path_, loop_, clock_, [this](const AgentEvent& event) {
                                  tracker_.record(event);
                                  ++recorded_;
                              }};
};

std::string eventLine(std::int64_t session)
{
    return encoded({.agent = AgentKind::claudeCode,
               .sessionID = std::to_string(session) + "-7a53-4c0f-9f2e-0d5f3b1c9a77",
               .cwd = "/home/someone/project",
               .signal = AgentSignal::working,
               .date = SystemClock{}.now()})
        + "\n";
}

/// From connecting until the tracker has recorded, one event at a time: the time of an iteration is the latency.
void socketToTracker(benchmark::State& state)
{
    Road road;
    const auto event = eventLine(0);
    for (auto _ : state) {
        road.send(event);
        road.waitUntilRecorded(1);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(socketToTracker)->UseRealTime()->Unit(benchmark::kMicrosecond);

/// As many events as the argument says in each connection, of four agent sessions; items are events.
void eventsPerSecond(benchmark::State& state)
{
    Road road;
    std::string events;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        events += eventLine(i % 4);
    for (auto _ : state) {
        road.send(events);
        road.waitUntilRecorded(state.range(0));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(eventsPerSecond)->Arg(1)->Arg(16)->Arg(256)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
