#include "App/System/linux/Sysfs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>

namespace vespra::sysfs {

namespace fs = std::filesystem;

namespace {

    /// The first line; absent if the file is missing or does not read, as many of the kernel's do now and then.
    std::optional<std::string> text(const fs::path& file)
    {
        std::ifstream stream{file};
        std::string line;
        if (!std::getline(stream, line))
            return {};
        return line;
    }

    std::optional<double> number(const fs::path& file)
    {
        const auto line = text(file);
        if (!line)
            return {};
        char* end = nullptr;
        const double value = std::strtod(line->c_str(), &end);
        if (end == line->c_str() || !std::isfinite(value))
            return {};
        return value;
    }

    /// The entries of a folder in the order of their names; none if there is no such folder.
    std::vector<fs::path> entries(const fs::path& folder)
    {
        std::vector<fs::path> all;
        std::error_code error;
        for (fs::directory_iterator each{folder, error}, end; !error && each != end; each.increment(error))
            all.push_back(each->path());
        std::ranges::sort(all);
        return all;
    }

    bool startsWithAny(std::string_view name, std::initializer_list<std::string_view> prefixes)
    {
        return std::ranges::any_of(prefixes, [&](std::string_view prefix) { return name.starts_with(prefix); });
    }

} // namespace

namespace {

    struct Content {
        double now;
        double full; // above 0
    };

    /// In the unit that `quantity` has: "energy" or "charge". Many batteries tell only one of them.
    std::optional<Content> content(const fs::path& battery, const std::string& quantity)
    {
        const auto now = number(battery / (quantity + "_now")), full = number(battery / (quantity + "_full"));
        if (!now || !full || *full <= 0)
            return {};
        return Content{*now, *full};
    }

    /// Percent. A battery's own idea of its level is the one that other programs show.
    std::optional<double> level(const fs::path& battery)
    {
        if (const auto capacity = number(battery / "capacity"))
            return capacity;
        auto held = content(battery, "energy");
        if (!held)
            held = content(battery, "charge");
        return held ? std::optional{held->now * 100 / held->full} : std::nullopt;
    }

    /// All batteries of the machine taken together: by their energy where each tells it, else by the mean of their
    /// levels.
    std::optional<std::int64_t> joinedLevel(const std::vector<fs::path>& batteries)
    {
        double now = 0, full = 0, percent = 0;
        int levels = 0;
        bool haveEnergy = batteries.size() > 1;
        for (const auto& battery : batteries) {
            const auto energy = content(battery, "energy");
            haveEnergy = haveEnergy && energy;
            now += energy ? energy->now : 0;
            full += energy ? energy->full : 0;
            if (const auto own = level(battery)) {
                percent += *own;
                ++levels;
            }
        }
        if (levels == 0)
            return {};
        const double joined = haveEnergy ? now * 100 / full : percent / levels;
        return static_cast<std::int64_t>(std::clamp(std::round(joined), 0.0, 100.0));
    }

} // namespace

PowerSnapshot readPower(const fs::path& root)
{
    std::vector<fs::path> batteries;
    bool hasCharger = false, isCharging = false, isDischarging = false;
    for (const auto& supply : entries(root / "class/power_supply")) {
        if (text(supply / "scope") == "Device")
            continue;
        const auto type = text(supply / "type");
        if (type == "Battery" && number(supply / "present").value_or(1) != 0) {
            batteries.push_back(supply);
            isDischarging = isDischarging || text(supply / "status") == "Discharging";
        } else if (type == "Mains" || type == "USB") {
            // A charger that cannot be read must not count as unplugged.
            const auto online = number(supply / "online");
            hasCharger = hasCharger || online;
            isCharging = isCharging || online.value_or(0) != 0;
        }
    }
    if (batteries.empty())
        return PowerSnapshot::desktop();
    return {.isOnACPower = hasCharger ? isCharging : !isDischarging, .batteryLevel = joinedLevel(batteries)};
}

namespace {

    /// Degrees; the kernel counts in thousandths, and a sensor that is not there reads absurdly.
    std::optional<double> degrees(const fs::path& file)
    {
        const auto value = number(file);
        if (!value || *value <= 0 || *value > 200'000)
            return {};
        return *value / 1000;
    }

    std::optional<double> lower(std::optional<double> one, std::optional<double> other)
    {
        return one && other ? std::optional{std::min(*one, *other)} : one ? one : other;
    }

    std::optional<ThermalSample> readZone(const fs::path& zone)
    {
        const auto type = text(zone / "type");
        if (!type || startsWithAny(*type, {"iwlwifi", "nvme", "BAT", "INT3400"}))
            return {};
        const auto temperature = degrees(zone / "temp");
        if (!temperature)
            return {};
        ThermalSample sample{.sensor = zone.filename(), .temperature = *temperature};
        for (int trip = 0;; ++trip) {
            const auto name = "trip_point_" + std::to_string(trip);
            const auto kind = text(zone / (name + "_type"));
            if (!kind)
                return sample;
            const auto at = degrees(zone / (name + "_temp"));
            if (*kind == "hot" || *kind == "critical")
                sample.limit = lower(sample.limit, at);
            else if (*kind == "passive")
                sample.passiveTrip = lower(sample.passiveTrip, at);
        }
    }

    void readProcessorSensors(const fs::path& monitor, std::vector<ThermalSample>& samples)
    {
        const auto name = text(monitor / "name");
        if (name != "coretemp" && name != "k10temp")
            return;
        for (const auto& file : entries(monitor)) {
            const auto input = file.filename().string();
            if (!input.starts_with("temp") || !input.ends_with("_input"))
                continue;
            const auto sensor = input.substr(0, input.find('_'));
            if (const auto temperature = degrees(file))
                samples.push_back({.sensor = monitor.filename().string() + "/" + sensor,
                    .temperature = *temperature,
                    .limit = degrees(monitor / (sensor + "_crit"))});
        }
    }

} // namespace

std::vector<ThermalSample> readThermometers(const fs::path& root)
{
    std::vector<ThermalSample> samples;
    for (const auto& zone : entries(root / "class/thermal"))
        if (zone.filename().string().starts_with("thermal_zone"))
            if (auto sample = readZone(zone))
                samples.push_back(*std::move(sample));
    for (const auto& monitor : entries(root / "class/hwmon"))
        readProcessorSensors(monitor, samples);
    return samples;
}

bool isExternalConnector(std::string_view name)
{
    const auto dash = name.find('-');
    if (!name.starts_with("card") || dash == std::string_view::npos)
        return false;
    return !startsWithAny(name.substr(dash + 1), {"eDP-", "LVDS-", "DSI-", "Virtual-", "Writeback-"});
}

bool hasExternalDisplay(const fs::path& root)
{
    const auto connectors = entries(root / "class/drm");
    return std::ranges::any_of(connectors, [](const fs::path& connector) {
        return isExternalConnector(connector.filename().string()) && text(connector / "status") == "connected";
    });
}

} // namespace vespra::sysfs
