#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"

#include <benchmark/benchmark.h>

using namespace vespra;

namespace {

/// What the hook tool does with its input, of a size in bytes: agents pass whole files along. `repeated` fills it.
void hookInput(benchmark::State& state, std::string_view repeated)
{
    constexpr std::size_t pieceSize = 65'536; // as it comes out of a pipe
    const auto size = static_cast<std::size_t>(state.range(0));
    std::string text = R"({"session_id":"s","hook_event_name":"PostToolUse","tool_response":")";
    while (text.size() < size)
        text += repeated;
    const std::string_view input = text += "\"}";
    for (auto _ : state) {
        HookInputParser parser;
        for (std::size_t read = 0; read < input.size(); read += pieceSize)
            benchmark::DoNotOptimize(parser.add(input.substr(read, pieceSize)));
        benchmark::DoNotOptimize(agentEvent(parser.input(), AgentKind::claudeCode, Instant{}));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input.size()));
}
BENCHMARK_CAPTURE(hookInput, image, "iVBORw0KGgoAAAANSUhEUgAA")
    ->Arg(1'000)
    ->Arg(700'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(hookInput, source,
    R"(    const auto& name = entry.path().filename();\n    if (name == \"é\\n\")\n        return {};\n)")
    ->Arg(700'000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
