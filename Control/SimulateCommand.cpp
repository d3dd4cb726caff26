#include "Control/Command.h"
#include "Control/Scenario/ScenarioPlayer.h"
#include "ControlProtocol/Arguments.h"

#include <cstdio>
#include <memory>

namespace vespra::control {

namespace {

    int simulate(const std::string& path)
    {
        const auto text = arguments::fileContents(path);
        const auto scenario = text ? parsedScenario(*text) : std::unexpected{text.error()};
        if (!scenario)
            return say(badInput, "scenario: " + scenario.error());
        play(*scenario, [](std::string_view line) {
            std::fwrite(line.data(), 1, line.size(), stdout);
            std::fputc('\n', stdout);
        });
        return done;
    }

} // namespace

void addSimulateCommand(CLI::App& vespractl, int& exitStatus)
{
    auto* command = vespractl.add_subcommand("simulate",
        "Plays a scenario through the session engine in virtual time and prints what happens as JSON lines");
    auto path = std::make_shared<std::string>();
    command->add_option("FILE", *path, "The scenario; - for standard input")->required();
    command->callback([path, &exitStatus] { exitStatus = simulate(*path); });
}

} // namespace vespra::control
