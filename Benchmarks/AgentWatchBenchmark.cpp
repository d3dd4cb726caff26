#include "App/Agents/AgentWatch.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Host/ProcessFacts.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <fstream>

using namespace vespra;

namespace {

/// The real files, and how much is read of them.
class CountedFiles final : public AgentFiles {
public:
    std::uint64_t bytes = 0;

    std::optional<FileFacts> facts(const std::string& path) override { return systemAgentFiles().facts(path); }
    std::optional<std::string> read(
        const std::string& path, const FileFacts& expected, std::uint64_t from, std::uint64_t length) override
    {
        auto text = systemAgentFiles().read(path, expected, from, length);
        bytes += text ? text->size() : 0;
        return text;
    }
    std::vector<std::string> names(const std::string& folder, std::size_t limit) override
    {
        return systemAgentFiles().names(folder, limit);
    }
};

constexpr int agents = 20;
constexpr const char* line
    = R"({"timestamp":"2026-01-01T12:00:00.000Z","ordinal":7,"type":"event_msg","payload":{"type":"token_count","info":"xxxxxxxxxxxxxxxxxxxx"}})"
      "\n";

/// Ten of each agent, with transcripts of so many MB together; all share this process.
class Machine {
public:
    explicit Machine(std::int64_t megabytes)
    {
        std::filesystem::create_directories(home_ / "projects/p");
        std::filesystem::create_directories(home_ / "sessions");
        for (int i = 0; i < agents; ++i) {
            paths_.push_back(home_ / ("projects/p/" + std::to_string(i) + ".jsonl"));
            grow(paths_.back(), static_cast<std::size_t>(megabytes) * 1'000'000 / agents);
        }
        const auto self = processFacts(getpid());
        std::ofstream{home_ / ("sessions/" + std::to_string(getpid()) + ".json")}
            << R"({"pid":)" << getpid() << R"(,"sessionId":"0","status":"busy","updatedAt":1767268800000})";
        watch_.sessionDidBegin({});
        for (int i = 0; i < agents; ++i) {
            AgentEvent event{.agent = i < agents / 2 ? AgentKind::claudeCode : AgentKind::codex,
                .sessionID = std::to_string(i),
                .signal = AgentSignal::working,
                .date = time_.now()};
            event.origin = {.process = ProcessIdentity{.pid = getpid(), .start = self->start},
                .transcript = paths_[static_cast<std::size_t>(i)]};
            watch_.record(event);
        }
    }

    void look() { watch_.look(); }
    void growAll()
    {
        for (const auto& path : paths_)
            grow(path, 2000);
    }
    std::uint64_t bytesRead() const { return files_.bytes; }

private:
    static void grow(const std::string& path, std::size_t by)
    {
        std::ofstream file{path, std::ios::app};
        for (std::size_t size = 0; size < by; size += std::string_view{line}.size())
            file << line;
    }

    TemporaryDirectory home_;
    std::vector<std::string> paths_;
    VirtualTime time_{Instant::fromISO8601("2026-01-01T12:00:00Z").value()};
    CountedFiles files_;
    AgentTracker tracker_;
    AgentWatch watch_{tracker_, {.files = files_, .processes = systemAgentProcesses(), .clock = time_, .tasks = time_}};
};

/// One look at twenty agents, of the main thread's time. "first": none has been read before; "same": nothing has
/// changed; "grown": each transcript by two kB.
void agentLook(benchmark::State& state, std::string_view kind)
{
    std::optional<Machine> machine{state.range(0)};
    if (kind != "first")
        machine->look();
    std::uint64_t bytes = 0, before = machine->bytesRead();
    for (auto _ : state) {
        state.PauseTiming();
        if (kind == "grown")
            machine->growAll();
        if (kind == "first" && bytes > 0)
            before = machine.emplace(state.range(0)).bytesRead();
        state.ResumeTiming();
        machine->look();
        bytes += machine->bytesRead() - before;
        before = machine->bytesRead();
    }
    state.counters["bytesPerLook"] = benchmark::Counter(static_cast<double>(bytes), benchmark::Counter::kAvgIterations);
}
BENCHMARK_CAPTURE(agentLook, first, "first")->Arg(1)->Arg(50)->Iterations(3)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(agentLook, same, "same")->Arg(1)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(agentLook, grown, "grown")->Arg(1)->Arg(50)->Unit(benchmark::kMicrosecond);

} // namespace
