#include "Control/Scenario/Scenario.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace vespra {

namespace {

    void allowOnly(const JSONSource& source, std::initializer_list<std::string_view> keys)
    {
        source.requireObject();
        for (const auto& [key, _] : source.value().items())
            if (std::ranges::find(keys, key) == keys.end())
                source.fail("unknown key \"" + key + "\"");
    }

    PowerSnapshot readPower(const JSONSource& source)
    {
        allowOnly(source, {"isOnACPower", "batteryLevel"});
        PowerSnapshot power{.isOnACPower = source.required("isOnACPower").boolean(), .batteryLevel = {}};
        if (const auto level = source.optional("batteryLevel"))
            power.batteryLevel = level->integer();
        return power;
    }

    HelperStatus readHelperStatus(const JSONSource& source)
    {
        static const std::vector<std::pair<std::string_view, HelperStatus>> statuses{
            {"ready", helper::Ready{}},
            {"failed", helper::Failed{}},
            {"awaitingApproval", helper::AwaitingApproval{}},
            {"notInstalled", helper::NotInstalled{}},
            {"noBuiltInDisplay", helper::Unsupported{ClosedLidUnsupportedReason::noBuiltInDisplay}},
            {"unsignedBuild", helper::Unsupported{ClosedLidUnsupportedReason::unsignedBuild}},
        };
        const auto name = source.string();
        for (const auto& [known, status] : statuses)
            if (known == name)
                return status;
        std::string expected = "expected one of";
        for (const auto& [known, _] : statuses)
            expected += " \"" + std::string{known} + '"';
        source.fail(expected);
    }

    EndReason readPayloadFreeReason(const JSONSource& source)
    {
        const auto name = source.string();
        std::string expected = "expected one of";
        for (const auto& reason : payloadFreeEndReasons) {
            if (caseName(reason) == name)
                return reason;
            expected += " \"" + std::string{caseName(reason)} + '"';
        }
        source.fail(expected);
    }

    void requireTrue(const JSONSource& source)
    {
        if (!source.value().is_boolean() || !source.boolean())
            source.fail("expected true");
    }

    StepAction readStart(const JSONSource& source)
    {
        allowOnly(source, {"plan", "options"});
        const auto options = source.optional("options");
        return step::Start{
            .plan = readSessionPlan(source.required("plan")),
            .options = options ? readSessionOptions(*options) : SessionOptions{},
        };
    }

    StepAction readHook(const JSONSource& source)
    {
        allowOnly(source, {"agent", "input"});
        const auto input = source.required("input");
        input.requireObject();
        return step::Hook{
            .agent = source.required("agent").rawValue<AgentKind>(),
            .input = hookInput(input.value()),
        };
    }

    StepAction readHelper(const JSONSource& source)
    {
        allowOnly(source, {"status", "lidSleepDisabled"});
        return step::Helper{
            .status = readHelperStatus(source.required("status")),
            .lidSleepDisabled = source.required("lidSleepDisabled").boolean(),
        };
    }

    StepAction readShow(const JSONSource& source)
    {
        if (!source.value().is_object()) {
            if (source.value() != true)
                source.fail("expected true or an object");
            return step::Show{.closedLidRequested = false};
        }
        allowOnly(source, {"closedLidRequested"});
        const auto requested = source.optional("closedLidRequested");
        return step::Show{.closedLidRequested = requested && requested->boolean()};
    }

    struct ActionReader {
        std::string_view key;
        StepAction (*read)(const JSONSource&);
    };

    constexpr std::array<ActionReader, std::variant_size_v<StepAction>> actionReaders{{
        {"start", readStart},
        {"stop", [](const JSONSource& value) -> StepAction { return step::Stop{readPayloadFreeReason(value)}; }},
        {"extend", [](const JSONSource& value) -> StepAction { return requireTrue(value), step::Extend{}; }},
        {"keepAwake", [](const JSONSource& value) -> StepAction { return requireTrue(value), step::KeepAwake{}; }},
        {"keepsDisplayAwake",
            [](const JSONSource& value) -> StepAction { return step::KeepsDisplayAwake{value.boolean()}; }},
        {"closedLid", [](const JSONSource& value) -> StepAction { return step::ClosedLid{value.boolean()}; }},
        {"settings", [](const JSONSource& value) -> StepAction { return step::Settings{readSessionSettings(value)}; }},
        {"power", [](const JSONSource& value) -> StepAction { return step::Power{readPower(value)}; }},
        {"thermal",
            [](const JSONSource& value) -> StepAction { return step::Thermal{value.rawValue<ThermalLevel>()}; }},
        {"helper", readHelper},
        {"lid", [](const JSONSource& value) -> StepAction { return step::Lid{value.boolean()}; }},
        {"hook", readHook},
        {"show", readShow},
    }};

    StepAction readAction(const JSONSource& source)
    {
        source.requireObject();
        const ActionReader* only = nullptr;
        for (const auto& [key, _] : source.value().items()) {
            if (key == "at")
                continue;
            const auto* const reader = std::ranges::find(actionReaders, key, &ActionReader::key);
            if (reader == actionReaders.end())
                source.fail("unknown key \"" + key + "\"");
            if (only)
                source.fail("expected one action beside \"at\", found two");
            only = &*reader;
        }
        if (!only)
            source.fail("expected one action beside \"at\"");
        return only->read(source.required(only->key));
    }

    Instant readTime(const JSONSource& source, Instant start)
    {
        const Seconds offset{source.number()};
        if (offset < 0s)
            source.fail("must not be negative");
        const auto date = start + offset;
        if (date >= Instant::fromISO8601("2199-01-01T00:00:00Z"))
            source.fail("lies too far ahead; expected a time before the year 2199");
        return date;
    }

    std::vector<ScenarioStep> readSteps(const JSONSource& source, Instant start)
    {
        std::vector<ScenarioStep> steps;
        for (std::size_t i = 0; i < source.size(); ++i) {
            const auto at = source.at(i).required("at");
            const auto date = readTime(at, start);
            if (!steps.empty() && date < steps.back().date)
                at.fail("must not decrease");
            steps.push_back({.date = date, .action = readAction(source.at(i))});
        }
        return steps;
    }

    SessionConditions readConditions(const JSONSource& source)
    {
        allowOnly(source, {"power", "thermal", "helper", "lidSleepDisabled", "lidClosedWithoutExternalDisplay"});
        SessionConditions conditions;
        if (const auto power = source.optional("power"))
            conditions.power = readPower(*power);
        if (const auto thermal = source.optional("thermal"))
            conditions.thermal = thermal->rawValue<ThermalLevel>();
        if (const auto helper = source.optional("helper"))
            conditions.helper = readHelperStatus(*helper);
        if (const auto disabled = source.optional("lidSleepDisabled"))
            conditions.lidSleepDisabled = disabled->boolean();
        if (const auto closed = source.optional("lidClosedWithoutExternalDisplay"))
            conditions.lidClosedWithoutExternalDisplay = closed->boolean();
        return conditions;
    }

    Calendar readCalendar(const std::optional<JSONSource>& source)
    {
        const auto calendar = Calendar::inZone(source ? source->string() : "UTC");
        if (!calendar)
            source->fail(calendar.error());
        return *calendar;
    }

    Instant readDate(const JSONSource& source)
    {
        if (const auto date = Instant::fromISO8601(source.string()))
            return *date;
        source.fail("expected a date such as \"2026-01-01T00:00:00Z\"");
    }

    Scenario readScenario(const JSONSource& source)
    {
        allowOnly(source, {"timeZone", "start", "settings", "conditions", "steps", "until"});
        const auto start = source.optional("start");
        Scenario scenario{
            .calendar = readCalendar(source.optional("timeZone")),
            .start = start ? readDate(*start) : Instant::fromISO8601("2026-01-01T00:00:00Z").value(),
            .settings = {},
            .conditions = {},
            .steps = {},
            .until = {},
        };
        if (const auto settings = source.optional("settings"))
            scenario.settings = readSessionSettings(*settings);
        if (const auto conditions = source.optional("conditions"))
            scenario.conditions = readConditions(*conditions);
        if (const auto steps = source.optional("steps"))
            scenario.steps = readSteps(*steps, scenario.start);
        scenario.until = scenario.steps.empty() ? scenario.start : scenario.steps.back().date;
        if (const auto until = source.optional("until"))
            scenario.until = std::max(scenario.until, readTime(*until, scenario.start));
        return scenario;
    }

    std::string lineAndColumn(std::string_view text, std::size_t byte)
    {
        const auto before = text.substr(0, byte > 0 ? byte - 1 : 0);
        const auto line = std::ranges::count(before, '\n') + 1;
        const auto column = before.size() - (before.rfind('\n') + 1) + 1; // npos + 1 is 0: the first line
        return "line " + std::to_string(line) + ", column " + std::to_string(column);
    }

} // namespace

std::expected<Scenario, std::string> parsedScenario(std::string_view text)
{
    JSON json;
    try {
        json = JSON::parse(text);
    } catch (const JSON::parse_error& error) {
        return std::unexpected{lineAndColumn(text, error.byte) + ": expected JSON"};
    } catch (const JSON::exception&) {
        return std::unexpected{"expected JSON with numbers within range"};
    }
    auto scenario = decoded(JSONSource{json}, readScenario);
    if (!scenario)
        return std::unexpected{scenario.error().description()};
    return *std::move(scenario);
}

} // namespace vespra
