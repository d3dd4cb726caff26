#include "App/Headless/HeadlessOptions.h"

#include "App/Headless/ExitStatus.h"
#include "Control/Arguments/Arguments.h"
#include "Core/Session/SessionLimits.h"

#include <CLI/CLI.hpp>

namespace vespra {

namespace {

    /// The value, or a complaint that CLI11 prints with the option's name in front.
    template <class Value> Value checked(const char* option, const std::expected<Value, std::string>& value)
    {
        if (!value)
            throw CLI::ValidationError{option, value.error()};
        return *value;
    }

    void addPlans(CLI::App& app, HeadlessOptions& options)
    {
        auto& preferences = options.preferences;
        auto* plans = app.add_option_group("How the session ends", "By default as a timer of one hour");
        plans
            ->add_option_function<std::string>(
                "--timer",
                [&](const std::string& text) {
                    preferences.mode = SessionMode::timer;
                    preferences.timerDuration = checked("--timer",
                        arguments::length(text, {SessionLimits::minimumDuration, SessionLimits::maximumDuration}));
                },
                "After this time, such as 25m or 1h30m; from one minute to 24 hours")
            ->type_name("LENGTH");
        plans
            ->add_option_function<std::string>(
                "--until",
                [&](const std::string& text) {
                    preferences.mode = SessionMode::until;
                    preferences.untilTime = checked("--until", arguments::timeOfDay(text));
                },
                "At this time of day, such as 18:30")
            ->type_name("TIME");
        plans->add_flag_callback(
            "--unlimited", [&] { preferences.mode = SessionMode::unlimited; }, "Only when you stop it");
        plans->add_flag_callback(
            "--agent", [&] { preferences.mode = SessionMode::agent; }, "When your coding agents have finished");
        plans->add_flag("--idle", options.isIdle, "Start no session, only listen to the agents");
        plans->require_option(0, 1);
    }

    void addSettings(CLI::App& app, HeadlessOptions& options, std::optional<Seconds>& grace)
    {
        app.add_option_function<std::string>(
               "--settings",
               [&](const std::string& path) {
                   options.settings = checked("--settings", arguments::settingsFile(path));
               },
               "Guardrails and agent settings, as a JSON file")
            ->type_name("FILE");
        app.add_option_function<std::string>(
               "--grace",
               [&](const std::string& text) {
                   constexpr auto range = AgentPolicy::graceRange;
                   grace = checked("--grace", arguments::length(text, {range.lowest, range.highest}));
               },
               "How long all agents must stay done before the session ends, such as 2m; up to 15m")
            ->type_name("LENGTH");
        app.add_flag("--display", options.preferences.options.keepsDisplayAwake, "Keep the display on too");
        app.add_flag("--closed-lid", options.preferences.options.closedLid, "Stay awake with the lid closed");
    }

    void addPlatform(CLI::App& app, HeadlessOptions& options)
    {
        app.add_option_function<std::string>(
               "--platform",
               [&](const std::string& name) {
                   options.platform = fromRawValue<PlatformKind>(name);
                   if (!options.platform)
                       throw CLI::ValidationError{
                           "--platform", "expected linux, macos or simulated, not \"" + name + "\""};
               },
               "Where to run: linux, macos or simulated; by default this system, or a simulated laptop where no power "
               "manager answers")
            ->type_name("NAME");
    }

} // namespace

std::variant<HeadlessOptions, int> parsedCommandLine(int argc, char** argv)
{
    HeadlessOptions options;
    std::optional<Seconds> grace;
    bool isHeadless = false;
    CLI::App app{"Keeps the computer awake until the work is done, then lets it sleep.", "vespra"};
    app.add_flag("--headless", isHeadless, "Run in the terminal, without windows");
    addPlans(app, options);
    addSettings(app, options, grace);
    addPlatform(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Asking for help is a "parse error" of status 0.
        return app.exit(error) == 0 ? ExitStatus::done : ExitStatus::badArguments;
    }
    // After --settings, wherever it stood on the command line.
    if (grace)
        options.settings.agents.graceDelay = *grace;
    return options;
}

} // namespace vespra
