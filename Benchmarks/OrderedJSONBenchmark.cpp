#include "Core/Agents/OrderedJSON.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using vespra::OrderedJSON;

/// A settings file with many hooks, permissions and variables, of about `size` bytes, laid out as an agent does.
std::string settings(std::size_t size)
{
    const auto section = [](const std::string& number) {
        return R"json({
  "model": "default",
  "cleanupPeriodDays": 30,
  "temperature": 1.50,
  "includeCoAuthoredBy": false,
  "env": {
    "PATH_)json"
            + number + R"json(": "/usr/local/bin:/usr/bin:/opt/tools/)json" + number + R"json(/bin",
    "GREETING": "Gr\u00fc\u00dfe, d\u00e9j\u00e0 vu — état",
    "TIMEOUT_MS": "120000"
  },
  "permissions": {
    "allow": ["Bash(npm run test:*)", "Bash(git log:*)", "Read(~/projects/)json"
            + number + R"json(/**)", "WebFetch"],
    "deny": ["Read(./.env)", "Read(./secrets/**)"],
    "defaultMode": "acceptEdits"
  },
  "hooks": {
    "PostToolUse": [
      {
        "matcher": "Edit|Write",
        "hooks": [
          { "type": "command", "command": "jq -r '.tool_input.file_path' | xargs \"prettier\" --write", "timeout": 20 }
        ]
      }
    ],
    "Stop": [{ "hooks": [{ "type": "command", "command": "notify-send 'done'" }] }]
  }
})json";
    };
    std::string text = "{\n\"projects\": [\n";
    for (int i = 0; text.size() < size; ++i)
        text += (i > 0 ? ",\n" : "") + section(std::to_string(i));
    return text + "\n]\n}\n";
}

constexpr std::size_t megabyte = 1'000'000;

void parseAndPrint(benchmark::State& state)
{
    const auto text = settings(megabyte);
    for (auto _ : state)
        benchmark::DoNotOptimize(OrderedJSON::parse(text).value().formatted());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(parseAndPrint)->Name("OrderedJSON/parse and print 1 MB")->Unit(benchmark::kMillisecond);

void parseAndPrintByLibrary(benchmark::State& state)
{
    const auto text = settings(megabyte);
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::ordered_json::parse(text).dump(2));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(parseAndPrintByLibrary)->Name("nlohmann ordered_json/parse and print 1 MB")->Unit(benchmark::kMillisecond);

void setOneOfManyKeys(benchmark::State& state)
{
    OrderedJSON::Object members;
    for (int i = 0; i < state.range(0); ++i)
        members.push_back({"key" + std::to_string(i), OrderedJSON::Array{"some text that is longer than a word"}});
    const OrderedJSON object{std::move(members)};
    const auto key = "key" + std::to_string(state.range(0) / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(object.setting(key, "changed"));
}
BENCHMARK(setOneOfManyKeys)
    ->Name("OrderedJSON/setting in an object")
    ->Arg(100)
    ->Arg(10'000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
