#include "Control/Session/Application.h"

#include "HelperProtocol/Brand.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

namespace vespra::control {

namespace {

    std::string isSilent() { return Brand::appName() + " does not answer; it may have been stopped."; }

    /// Why no connection was made, by the system's error number.
    std::string whyUnreachable(int reason)
    {
        switch (reason) {
        case ENOENT:
        case ENOTDIR:
        case ECONNREFUSED:
            return Brand::appName() + " is not running.";
        case EAGAIN: // nobody takes connections, and no more can wait
            return isSilent();
        default:
            return Brand::appName() + " cannot be reached: " + controlProtocol::defaultPath() + ": "
                + std::strerror(reason);
        }
    }

} // namespace

std::optional<ControlClient> connected(const ControlRequest& request, int& exitStatus)
{
    // Writing to an application that has gone must fail, not end this program.
    std::signal(SIGPIPE, SIG_IGN);
    ControlClient client;
    if (client.connect()) {
        // A failure to send is not handled here: the application may have answered before it closed, and receiving
        // tells.
        client.send(request);
        return client;
    }
    exitStatus = say(notRunning, whyUnreachable(errno));
    return {};
}

std::optional<ControlClient> connectedForLong(const ControlRequest& request, int& exitStatus)
{
    auto client = connected({.verb = ControlVerb::settings}, exitStatus);
    if (!client)
        return {};
    if (const auto failed = failure(client->receive())) {
        exitStatus = *failed;
        return {};
    }
    client->send(request);
    return client;
}

std::optional<int> failure(const std::optional<JSON>& reply)
{
    if (!reply && errno == ETIMEDOUT)
        return say(notRunning, isSilent());
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
    const auto message = told.value("message", std::string{});
    if (!told.value("isPossible", false))
        return say(noClosedLid, message);
    return say(done, message);
}

int ask(const ControlRequest& request, const std::function<void(const JSON&)>& use, std::optional<Seconds> limit)
{
    int exitStatus = done;
    auto client = limit ? connected(request, exitStatus) : connectedForLong(request, exitStatus);
    if (!client)
        return exitStatus;
    const auto reply = client->receive(limit);
    if (const auto failureStatus = failure(reply))
        return *failureStatus;
    use(*reply);
    return closedLidStatus(*reply);
}

int ask(const ControlRequest& request, std::optional<Seconds> limit)
{
    const auto print = [](const JSON& reply) {
        if (const auto found = reply.find("done"); found != reply.end() && found->contains("message"))
            std::printf("%s\n", found->value("message", std::string{}).c_str());
    };
    return ask(request, print, limit);
}

} // namespace vespra::control
