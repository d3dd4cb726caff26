#include "App/System/linux/Sysfs.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <benchmark/benchmark.h>
#include <fstream>

namespace {

using namespace vespra;

/// What a poll of the temperature costs on a laptop of `state.range(0)` thermal zones of four trips each.
void thermalPoll(benchmark::State& state)
{
    const TemporaryDirectory root;
    for (int zone = 0; zone < state.range(0); ++zone) {
        const auto folder = root / ("class/thermal/thermal_zone" + std::to_string(zone));
        std::filesystem::create_directories(folder);
        std::ofstream{folder / "type"} << "acpitz\n";
        std::ofstream{folder / "temp"} << "61000\n";
        for (int trip = 0; trip < 4; ++trip) {
            const auto name = "trip_point_" + std::to_string(trip);
            std::ofstream{folder / (name + "_type")} << "critical\n";
            std::ofstream{folder / (name + "_temp")} << "105000\n";
        }
    }
    ThermalEstimate estimate;
    Seconds uptime{};
    for (auto _ : state)
        benchmark::DoNotOptimize(estimate.update(sysfs::readThermometers(root.path()), {uptime += 5s}));
}
BENCHMARK(thermalPoll)->Arg(1)->Arg(10);

} // namespace
