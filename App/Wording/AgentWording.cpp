#include "App/Wording/AgentWording.h"

#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"

namespace vespra {

std::string title(AgentEndAction action)
{
    switch (action) {
    case AgentEndAction::letSleep:
        return localized("Nothing");
    case AgentEndAction::sleepNow:
        return localized("Sleep");
    case AgentEndAction::shutDown:
        break;
    }
    return localized("Shut Down");
}

std::string explanation(AgentEndAction action)
{
    switch (action) {
    case AgentEndAction::letSleep:
        return localized("The Mac goes back to its usual sleep settings.");
    case AgentEndAction::sleepNow:
        return localized("The Mac goes to sleep right away, after a 1-minute countdown you can cancel.");
    case AgentEndAction::shutDown:
        break;
    }
    return localized("The Mac shuts down after a 1-minute countdown you can cancel. Unsaved work in other apps will be "
                     "lost.");
}

std::string notificationBody(AgentEndAction action)
{
    switch (action) {
    case AgentEndAction::letSleep:
        return localized("Your Mac can go to sleep again.");
    case AgentEndAction::sleepNow:
        return localized("The Mac will sleep in 1 minute.");
    case AgentEndAction::shutDown:
        break;
    }
    return localized("The Mac will shut down in 1 minute. Save your work.");
}

namespace {

    /// "Claude Code (project)".
    std::string agentName(const AgentSession& session)
    {
        auto name = std::string{displayName(session.agent)};
        if (const auto folder = session.folderName())
            name += " (" + *folder + ")";
        return name;
    }

} // namespace

std::string statusLine(const AgentSession& session)
{
    const auto name = agentName(session);
    switch (session.activity) {
    case AgentActivity::working:
        return localized("%1 is working", {name});
    case AgentActivity::waitingForApproval:
        return localized("%1 waits for approval", {name});
    case AgentActivity::idle:
        break;
    }
    return localized("%1 is idle", {name});
}

std::string sinceLine(const AgentSession& session)
{
    const auto name = agentName(session);
    const auto since = timeText(session.activitySince);
    switch (session.activity) {
    case AgentActivity::working:
        return localized("%1 has been working since %2.", {name, since});
    case AgentActivity::waitingForApproval:
        return localized("%1 has been waiting for approval since %2.", {name, since});
    case AgentActivity::idle:
        break;
    }
    return localized("%1 has been idle since %2.", {name, since});
}

} // namespace vespra
