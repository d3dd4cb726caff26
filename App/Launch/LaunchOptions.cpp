#include "App/Launch/LaunchOptions.h"

#include "ControlProtocol/Arguments.h"
#include "ControlProtocol/CommandLine.h"
#include "Core/Session/SessionLimits.h"

namespace vespra {

namespace {

    /// How an option's value is read: the value, or a sentence that says what was expected.
    template <class Value> using Reader = std::function<std::expected<Value, std::string>(const std::string&)>;

    struct Option {
        const char* name;
        const char* value; // what stands for it in the help
        const char* help;
    };

    template <class Value, class Take>
    CLI::Option* add(CLI::App& app, const Option& option, const Reader<Value>& read, Take take)
    {
        const auto use = [name = option.name, read, take](const std::string& text) {
            const auto value = read(text);
            if (!value)
                throw CLI::ValidationError{name, value.error()};
            take(*value);
        };
        return app.add_option_function<std::string>(option.name, use, option.help)->type_name(option.value);
    }

    Reader<Seconds> lengthWithin(ClosedRange<Seconds> range)
    {
        return [range](const std::string& text) { return arguments::length(text, range); };
    }

    std::expected<PlatformKind, std::string> platformKind(const std::string& name)
    {
        if (const auto kind = fromRawValue<PlatformKind>(name))
            return *kind;
        return std::unexpected{"expected linux, macos or simulated, not \"" + name + "\""};
    }

    void addPlans(CLI::App& app, StartOptions& session, bool& isIdle)
    {
        std::vector<CLI::Option*> plans;
        const auto addPlan = [&plans](CLI::Option* plan) {
            plan->group("How the session ends; by default as the last time, at first after one hour");
            for (auto* other : plans)
                plan->excludes(other);
            plans.push_back(plan);
        };
        addPlan(add<Seconds>(app,
            {"--timer", "LENGTH", "After this time, such as 25m or 1h30m; from one minute to 24 hours"},
            lengthWithin({SessionLimits::minimumDuration, SessionLimits::maximumDuration}),
            [&](Seconds length) {
                session.mode = SessionMode::timer;
                session.timerDuration = length;
            }));
        addPlan(add<TimeOfDay>(
            app, {"--until", "TIME", "At this time of day, such as 18:30"}, arguments::timeOfDay, [&](TimeOfDay time) {
                session.mode = SessionMode::until;
                session.untilTime = time;
            }));
        const auto addMode = [&](const char* name, SessionMode mode, const char* help) {
            addPlan(app.add_flag_callback(name, [&session, mode] { session.mode = mode; }, help));
        };
        addMode("--unlimited", SessionMode::unlimited, "Only when you stop it");
        addMode("--agent", SessionMode::agent, "When your coding agents have finished");
        addPlan(app.add_flag("--idle", isIdle, "Start no session, only listen to the agents"));
    }

    void addRendering(CLI::App& app, std::optional<RenderRequest>& request)
    {
        const auto takeDirectory = [&](const std::string& directory) { request.emplace().directory = directory; };
        auto* render = app.add_option_function<std::string>(
            "--render", takeDirectory, "Draw pictures of every window into this folder, and quit");
        render->type_name("DIR")->trigger_on_parse();
        const auto takeName = [&](const std::string& name) { request->name = name; };
        app.add_option_function<std::string>("--only", takeName, "With --render: only the picture of this name")
            ->type_name("NAME")
            ->needs(render);
    }

} // namespace

std::variant<LaunchOptions, int> parsedCommandLine(int argc, char** argv)
{
    LaunchOptions options;
    CLI::App app{"Keeps the computer awake until the work is done, then lets it sleep.", programName};
    commandLine::prepare(app);
    app.add_flag("--headless", options.isHeadless, "Run in the terminal, without windows");
    addPlans(app, options.session, options.isIdle);
    add<Seconds>(app,
        {"--grace", "LENGTH", "How long all agents must stay done before the session ends, such as 2m; up to 15m"},
        lengthWithin(AgentPolicy::graceRange),
        [&](Seconds length) { options.grace = length; });
    app.add_flag_callback("--display", [&] { options.session.keepsDisplayAwake = true; }, "Keep the display on too");
    app.add_flag_callback("--closed-lid", [&] { options.session.closedLid = true; }, "Stay awake with the lid closed");
    add<std::vector<settingTexts::Change>>(
        app, {"--settings", "FILE", "Settings for this run, as JSON"}, settingTexts::file, [&](const auto& settings) {
            options.settings = settings;
        });
    add<PlatformKind>(app,
        {"--platform",
            "NAME",
            "linux, macos or simulated; by default this system, or a simulated laptop where no power manager answers"},
        platformKind,
        [&](PlatformKind kind) { options.platform = kind; });
    addRendering(app, options.render);
    if (const auto exitStatus = commandLine::parse(app, argc, argv))
        return *exitStatus;
    return options;
}

} // namespace vespra
