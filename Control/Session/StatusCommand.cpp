#include "Control/Session/Application.h"
#include "ControlProtocol/SnapshotJSON.h"
#include "HelperProtocol/Process.h"

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>
#include <unistd.h>

namespace vespra::control {

namespace {

    bool isPrinted(const std::string& text)
    {
        return std::fputs(text.c_str(), stdout) >= 0 && process::isOutputWritten();
    }

    bool hasReader() { return process::hasReader(STDOUT_FILENO); }

    /// The exit status of a watch whose output cannot be written. A reader that has gone is the usual end, and no
    /// failure.
    int ended()
    {
        if (hasReader())
            return failed;
        std::clearerr(stdout);
        return done;
    }

    std::string statusLine(const JSON& reply) { return dumped(reply.value("status", JSON::object())) + "\n"; }

    std::string description(const JSON& reply)
    {
        std::string text;
        for (const auto& line : reply.value("lines", JSON::array()))
            text += line.get<std::string>() + "\n";
        return text;
    }

    int printOnce(bool asJSON)
    {
        return ask({.verb = asJSON ? ControlVerb::status : ControlVerb::describe}, [asJSON](const JSON& reply) {
            std::fputs((asJSON ? statusLine(reply) : description(reply)).c_str(), stdout);
        });
    }

    /// A line for every change, until the application goes.
    int watchJSON()
    {
        int exitStatus = done;
        auto client = connected({.verb = ControlVerb::watch}, exitStatus);
        if (!client)
            return exitStatus;
        // The first line comes at once, the others when something has changed.
        for (auto reply = client->receive();; reply = client->receive({}, STDOUT_FILENO)) {
            if (!reply && !hasReader())
                return ended();
            if (const auto failureStatus = failure(reply))
                return *failureStatus;
            if (!isPrinted(statusLine(*reply)))
                return ended();
        }
    }

    /// Prints the description again whenever it has changed: once a second while something is counted.
    int watchText()
    {
        int exitStatus = done;
        auto client = connected({.verb = ControlVerb::describe}, exitStatus);
        if (!client)
            return exitStatus;
        for (std::string shown;;) {
            const auto reply = client->receive();
            if (const auto failureStatus = failure(reply))
                return *failureStatus;
            if (auto text = description(*reply); text != shown) {
                shown = std::move(text);
                if (!isPrinted(shown))
                    return ended();
            }
            std::this_thread::sleep_for(std::chrono::seconds{1});
            if (!hasReader())
                return ended();
            // A failure to send shows in the missing reply.
            client->send({.verb = ControlVerb::describe});
        }
    }

} // namespace

void addStatusCommand(CLI::App& vespractl, int& exitStatus)
{
    struct Flags {
        bool json = false;
        bool watch = false;
    };
    const auto flags = std::make_shared<Flags>();
    auto* status = vespractl.add_subcommand("status", "Tells how the session, the closed lid and the agents stand");
    status->add_flag("--json", flags->json, "One line of JSON");
    status->add_flag("--watch", flags->watch, "Goes on, and tells every change");
    status->callback([flags, &exitStatus] {
        if (!flags->watch)
            exitStatus = printOnce(flags->json);
        else
            exitStatus = flags->json ? watchJSON() : watchText();
    });
}

} // namespace vespra::control
