#include "App/System/simulated/MachineProtocol.h"
#include "Control/Command.h"
#include "Core/Coding/JSON.h"
#include "HelperProtocol/UnixSocket.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sys/socket.h>
#include <sys/time.h>

namespace vespra::control {

namespace {

    /// The answer's line; absent if no simulated laptop answers within 5 s, with the reason in `errno`.
    std::optional<std::string> exchanged(const std::string& path, const std::string& request)
    {
        const auto address = unixSocket::address(path);
        const auto socket = unixSocket::make();
        if (!address || !socket)
            return {};
        const timeval limit{.tv_sec = 5, .tv_usec = 0};
        setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        const auto line = request + "\n";
        if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0
            || write(socket.get(), line.data(), line.size()) != std::ssize(line))
            return {};
        std::string answer;
        char bytes[4096];
        for (ssize_t count = 0; (count = read(socket.get(), bytes, sizeof bytes)) > 0;)
            answer.append(bytes, static_cast<std::size_t>(count));
        return answer.ends_with('\n') ? std::optional{answer} : std::nullopt;
    }

    /// Absent after a failure: it has been reported and `exitStatus` is set.
    std::optional<JSON> askMachine(const MachineSettings& settings, int& exitStatus)
    {
        const auto path = machineProtocol::defaultPath();
        const auto answer = exchanged(path, machineProtocol::request(settings));
        if (!answer) {
            const bool isSilent = errno == EAGAIN; // the limit of reading
            const auto why = path + ": " + std::strerror(errno);
            exitStatus = say(notRunning,
                isSilent ? "machine: the simulated laptop does not answer; it may have been stopped"
                         : "machine: no simulated laptop is running (" + why
                        + "); start one with: vespra --platform simulated");
            return {};
        }
        const std::string unreadable = "unreadable answer";
        auto json = JSON::parse(*answer, nullptr, false);
        if (!json.is_object() || !json.contains("machine") || json.contains("error")) {
            exitStatus = say(failed, "machine: " + (json.is_object() ? json.value("error", unreadable) : unreadable));
            return {};
        }
        return json;
    }

    int set(const std::vector<std::string>& texts)
    {
        MachineSettings settings;
        for (const auto& text : texts) {
            const auto setting = machineSetting(text);
            if (!setting)
                return say(badInput, "machine: " + setting.error());
            settings.push_back(*setting);
        }
        if (const auto change = changed(MachineState{}, settings); !change)
            return say(badInput, "machine: " + change.error());
        int exitStatus = done;
        askMachine(settings, exitStatus);
        return exitStatus;
    }

    int printMachine(bool asJSON)
    {
        int exitStatus = done;
        const auto answer = askMachine({}, exitStatus);
        if (!answer)
            return exitStatus;
        if (asJSON)
            std::printf("%s\n", answer->dump().c_str());
        else
            for (const auto& [key, value] : (*answer)["machine"].items())
                std::printf("%s=%s\n", key.c_str(), value.get<std::string>().c_str());
        return done;
    }

} // namespace

void addMachineCommand(CLI::App& vespractl, int& exitStatus)
{
    auto* command = vespractl.add_subcommand("machine", "Steers the simulated laptop");
    command->require_subcommand(1);

    auto* setting = command->add_subcommand("set", "Changes the laptop: " + machineSettingsHelp());
    const auto first = std::make_shared<std::string>();
    setting->add_option("KEY=VALUE...", *first, "What to change; all of it or, if any of it is wrong, nothing")
        ->required();
    // Not as an option with several values: CLI11 would take brackets off them.
    setting->allow_extras();
    setting->callback([=, &exitStatus] {
        auto settings = setting->remaining();
        std::erase(settings, "--");
        settings.insert(settings.begin(), *first);
        exitStatus = set(settings);
    });

    auto* getting = command->add_subcommand("get", "Prints the state of the laptop");
    const auto asJSON = std::make_shared<bool>(false);
    getting->add_flag("--json", *asJSON, "As JSON, with what holds the laptop awake and what it shows");
    getting->callback([asJSON, &exitStatus] { exitStatus = printMachine(*asJSON); });
}

} // namespace vespra::control
