#include "Control/Session/Application.h"

#include "HelperProtocol/Brand.h"

#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace vespra::control {

namespace {

    int say(int status, const std::string& message)
    {
        std::fprintf(stderr, "%s\n", message.c_str());
        return status;
    }

} // namespace

std::optional<ControlClient> connected(const ControlRequest& request, int& exitStatus)
{
    // Whoever goes away is told of by what fails then.
    std::signal(SIGPIPE, SIG_IGN);
    ControlClient client;
    if (client.connect()) {
        // What cannot be sent has no other answer than the one that may have come before, or none.
        client.send(request);
        return client;
    }
    exitStatus = say(notRunning, Brand::appName() + " is not running.");
    return {};
}

std::optional<int> failure(const std::optional<JSON>& reply)
{
    if (!reply || !reply->is_object())
        return say(notRunning, Brand::appName() + " has gone without an answer.");
    const auto error = reply->find("error");
    if (error == reply->end())
        return {};
    const auto kind = error->value("kind", std::string{});
    return say(kind == controlProtocol::badRequest ? badInput : failed, error->value("message", std::string{}));
}

int closedLidStatus(const JSON& reply)
{
    const auto told = reply.value("done", JSON::object()).value("closedLid", JSON::object());
    if (told.empty())
        return done;
    return say(told.value("isPossible", false) ? done : noClosedLid, told.value("message", std::string{}));
}

int ask(const ControlRequest& request, const std::function<void(const JSON&)>& use, std::optional<Seconds> limit)
{
    int exitStatus = done;
    auto client = connected(request, exitStatus);
    if (!client)
        return exitStatus;
    const auto reply = client->receive(limit);
    if (const auto failed = failure(reply))
        return *failed;
    use(*reply);
    return closedLidStatus(*reply);
}

int ask(const ControlRequest& request, std::optional<Seconds> limit)
{
    const auto print = [](const JSON& reply) {
        if (const auto done = reply.find("done"); done != reply.end() && done->contains("message"))
            std::printf("%s\n", done->value("message", std::string{}).c_str());
    };
    return ask(request, print, limit);
}

} // namespace vespra::control
