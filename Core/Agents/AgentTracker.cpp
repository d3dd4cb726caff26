#include "Core/Agents/AgentTracker.h"

#include "Core/Coding/DisplayText.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"

#include <algorithm>

namespace vespra {

namespace {

    AgentSession newSession(const std::string& id, const AgentEvent& event)
    {
        return {.id = id, .agent = event.agent, .cwd = {}, .lastEventAt = event.date, .activitySince = event.date};
    }

    void take(AgentSession& session, AgentActivity activity, Instant now)
    {
        if (activity != session.activity)
            session.activitySince = now;
        session.activity = activity;
        session.hasWorked = session.hasWorked || activity != AgentActivity::idle;
    }

    auto findSession(auto& sessions, const std::string& id)
    {
        return std::ranges::find(sessions, id, &AgentSession::id);
    }

} // namespace

AgentActivity activityAfter(AgentSignal signal)
{
    switch (signal) {
    case AgentSignal::working:
        return AgentActivity::working;
    case AgentSignal::waitingForApproval:
        return AgentActivity::waitingForApproval;
    case AgentSignal::sessionStarted:
    case AgentSignal::finished:
    case AgentSignal::sessionEnded:
        break;
    }
    return AgentActivity::idle;
}

std::string agentSessionID(const AgentEvent& event)
{
    return std::string{rawValue(event.agent)} + ":" + event.sessionID;
}

std::optional<std::string> AgentSession::folderName() const
{
    if (!cwd)
        return {};
    std::string_view path{*cwd};
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    if (path != "/")
        path.remove_prefix(path.rfind('/') + 1); // npos + 1 is 0: the whole path
    if (path.empty())
        return {};
    return displayText(path);
}

void AgentTracker::record(const AgentEvent& event)
{
    mainThread::check();
    const auto id = agentSessionID(event);
    if (event.signal == AgentSignal::sessionEnded)
        end(id);
    else
        update(id, event);
    notify(onChange);
}

void AgentTracker::correct(const std::string& id, AgentActivity activity, Instant since)
{
    mainThread::check();
    const auto found = findSession(sessions_.get(), id);
    if (found == sessions_.get().end() || found->activity == activity)
        return;
    const auto corrected = sessions_.modify([&](std::vector<AgentSession>& sessions) {
        auto& session = *findSession(sessions, id);
        take(session, activity, since);
        return session;
    });
    if (activity == AgentActivity::idle)
        lastFinished_.set(corrected);
    notify(onChange);
}

void AgentTracker::endUnheard(const std::string& id)
{
    mainThread::check();
    if (end(id))
        notify(onChange);
}

/// Whether there was one.
bool AgentTracker::end(const std::string& id)
{
    const auto& sessions = sessions_.get();
    const auto ended = findSession(sessions, id);
    if (ended == sessions.end())
        return false;
    if (ended->activity != AgentActivity::idle)
        lastFinished_.set(*ended);
    sessions_.modify([&](auto& all) { all.erase(ended); });
    return true;
}

void AgentTracker::update(const std::string& id, const AgentEvent& event)
{
    const auto updated = sessions_.modify([&](std::vector<AgentSession>& sessions) {
        auto session = findSession(sessions, id);
        if (session == sessions.end())
            session = sessions.insert(session, newSession(id, event));
        if (event.cwd)
            session->cwd = event.cwd;
        take(*session, activityAfter(event.signal), event.date);
        session->lastEventAt = event.date;
        return *session;
    });
    if (event.signal == AgentSignal::finished)
        lastFinished_.set(updated);
}

void AgentTracker::pruneStale(Instant now)
{
    mainThread::check();
    const auto isStale = [now](const AgentSession& session) { return now - session.lastEventAt > staleAfter; };
    if (std::ranges::none_of(sessions_.get(), isStale))
        return;
    sessions_.modify([&](auto& sessions) { return std::erase_if(sessions, isStale); });
    notify(onChange);
}

bool AgentTracker::hasBusySession(const AgentPolicy& policy) const
{
    return std::ranges::any_of(sessions_.get(), [&](const AgentSession& session) {
        return session.activity == AgentActivity::working
            || (session.activity == AgentActivity::waitingForApproval && !policy.waitingCountsAsFinished);
    });
}

} // namespace vespra
