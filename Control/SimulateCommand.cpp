#include "Control/Command.h"
#include "Control/Scenario/ScenarioPlayer.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace vespra::control {

namespace {

    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    /// "-" is standard input.
    std::expected<std::string, std::string> contents(const std::string& path)
    {
        const bool isStandardInput = path == "-";
        const File file{isStandardInput ? stdin : std::fopen(path.c_str(), "rbe"),
            [](std::FILE* open) { return open == stdin ? 0 : std::fclose(open); }};
        std::string text;
        if (file) {
            char chunk[1 << 16];
            while (const auto read = std::fread(chunk, 1, sizeof chunk, file.get()))
                text.append(chunk, read);
        }
        if (!file || std::ferror(file.get()))
            return std::unexpected{"cannot read " + path + ": " + std::strerror(errno)};
        return text;
    }

    int simulate(const std::string& path)
    {
        const auto text = contents(path);
        const auto scenario = text ? parsedScenario(*text) : std::unexpected{text.error()};
        if (!scenario) {
            std::fprintf(stderr, "scenario: %s\n", scenario.error().c_str());
            return badInput;
        }
        play(*scenario, [](std::string_view line) {
            std::fwrite(line.data(), 1, line.size(), stdout);
            std::fputc('\n', stdout);
        });
        if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
            std::fprintf(stderr, "simulate: cannot write the result: %s\n", std::strerror(errno));
            return failed;
        }
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
