#include "Control/Session/Application.h"
#include "ControlProtocol/Arguments.h"
#include "Core/Session/SessionLimits.h"

#include <map>
#include <memory>

namespace vespra::control {

namespace {

    constexpr ClosedRange<Seconds> timerRange{SessionLimits::minimumDuration, SessionLimits::maximumDuration};

    struct StartArguments {
        StartOptions options;
        std::string length;
        std::string time;
    };

    template <class Value> Value checked(const char* name, const std::expected<Value, std::string>& value)
    {
        if (!value)
            throw CLI::ValidationError{name, value.error()};
        return *value;
    }

    void addOptions(CLI::App& command, StartOptions& options)
    {
        // In the order in which they are given: the last one counts.
        const auto add = [&command](const char* name, std::optional<bool>& option, bool value, const char* help) {
            command.add_flag_callback(name, [&option, value] { option = value; }, help)->trigger_on_parse();
        };
        add("--display", options.keepsDisplayAwake, true, "Keep the display on too");
        add("--no-display", options.keepsDisplayAwake, false, "Let the display go off");
        add("--closed-lid", options.closedLid, true, "Stay awake with the lid closed");
        add("--no-closed-lid", options.closedLid, false, "Sleep when the lid closes");
    }

    void addStart(CLI::App& vespractl, int& exitStatus)
    {
        const auto arguments = std::make_shared<StartArguments>();
        auto& options = arguments->options;
        auto* start = vespractl.add_subcommand("start", "Starts a session; without a plan, as you last chose");
        start->require_subcommand(0, 1);
        start->fallthrough();
        addOptions(*start, options);
        const auto addPlan = [&](SessionMode mode, const char* help) {
            auto* plan = start->add_subcommand(std::string{rawValue(mode)}, help);
            plan->parse_complete_callback([&options, mode] { options.mode = mode; });
            return plan;
        };
        addPlan(SessionMode::timer, "Ends after a time, such as 45m")
            ->add_option_function<std::string>(
                "LENGTH",
                [&options](const std::string& text) {
                    options.timerDuration = checked("timer", arguments::length(text, timerRange));
                },
                "From one minute to 24 hours, such as 45m or 1h30m; without, as last time")
            ->type_name("");
        addPlan(SessionMode::until, "Ends at a time of day, such as 18:30")
            ->add_option_function<std::string>(
                "TIME",
                [&options](
                    const std::string& text) { options.untilTime = checked("until", arguments::timeOfDay(text)); },
                "Such as 18:30; without, as last time")
            ->type_name("");
        addPlan(SessionMode::unlimited, "Ends when you stop it");
        addPlan(SessionMode::agent, "Ends when your coding agents have finished");
        start->final_callback(
            [arguments, &exitStatus] { exitStatus = ask({.verb = ControlVerb::start, .start = arguments->options}); });
    }

    void addPlain(CLI::App& vespractl, int& exitStatus, ControlVerb verb, const char* name, const char* help)
    {
        vespractl.add_subcommand(name, help)->callback([verb, &exitStatus] { exitStatus = ask({.verb = verb}); });
    }

    void addSwitch(CLI::App& vespractl, int& exitStatus, ControlVerb verb, const char* name, const char* help)
    {
        auto* command = vespractl.add_subcommand(name, help);
        const auto text = std::make_shared<std::string>();
        command->add_option("STATE", *text, "on or off")->required()->check(commandLine::oneOf({"on", "off"}));
        command->callback([=, &exitStatus] { exitStatus = ask({.verb = verb, .on = *text == "on"}); });
    }

    struct ClosedLidState {
        ControlRequest request;
        /// It may wait for a password.
        bool waitsForPerson = false;
    };

    void addClosedLid(CLI::App& vespractl, int& exitStatus)
    {
        static const std::map<std::string, ClosedLidState> states{
            {"on", {{.verb = ControlVerb::closedLid, .on = true}}},
            {"off", {{.verb = ControlVerb::closedLid, .on = false}}},
            {"set-up", {{.verb = ControlVerb::setUpClosedLid}, true}},
            {"remove", {{.verb = ControlVerb::removeClosedLid}, true}},
        };
        auto* command = vespractl.add_subcommand("closed-lid",
            "Stays awake with the lid closed, or sleeps when it closes; sets up the component for that, or removes it");
        const auto text = std::make_shared<std::string>();
        command->add_option("STATE", *text, "on, off, set-up or remove")
            ->required()
            ->check(commandLine::oneOf({"on", "off", "set-up", "remove"}));
        command->callback([text, &exitStatus] {
            const auto& [request, waitsForPerson] = states.at(*text);
            exitStatus = ask(request, waitsForPerson ? std::nullopt : std::optional{ControlClient::usualLimit});
        });
    }

} // namespace

void addSessionCommands(CLI::App& vespractl, int& exitStatus)
{
    addStart(vespractl, exitStatus);
    addPlain(vespractl, exitStatus, ControlVerb::stop, "stop", "Ends the session, if one runs");
    addPlain(vespractl, exitStatus, ControlVerb::toggle, "toggle", "Ends the session, or starts one as you last chose");
    addPlain(vespractl, exitStatus, ControlVerb::extend, "extend", "Moves the end of the session 15 minutes ahead");
    addPlain(vespractl,
        exitStatus,
        ControlVerb::keepAwake,
        "keep-awake",
        "Keeps the agent session going when the agents are done");
    addPlain(vespractl,
        exitStatus,
        ControlVerb::cancel,
        "cancel",
        "Calls off the sleep or shutdown that is to follow the agents, if there is one");
    addSwitch(vespractl, exitStatus, ControlVerb::display, "display", "Keeps the display on too, or lets it go off");
    addClosedLid(vespractl, exitStatus);
}

} // namespace vespra::control
