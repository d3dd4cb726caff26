#include "App/Agents/AgentWatch.h"

#include "Core/Scheduling/MainThread.h"

#include <algorithm>

namespace vespra {

namespace {

    using Process = AgentReading::Process;

    /// "30501.json"; keys and remains of older versions lie beside those.
    bool isStatusFile(std::string_view name)
    {
        constexpr std::string_view ending = ".json";
        if (!name.ends_with(ending) || name.size() == ending.size())
            return false;
        name.remove_suffix(ending.size());
        return name.find_first_not_of("0123456789") == std::string_view::npos;
    }

    const AgentSession* findTracked(const AgentTracker& tracker, const std::string& sessionID)
    {
        const auto& sessions = tracker.sessions();
        const auto found = std::ranges::find(sessions, sessionID, &AgentSession::id);
        return found == sessions.end() ? nullptr : &*found;
    }

} // namespace

AgentWatch::AgentWatch(AgentTracker& tracker, System system)
    : tracker_{tracker}
    , system_{system}
{
}

void AgentWatch::record(const AgentEvent& event)
{
    mainThread::check();
    const auto id = agentSessionID(event);
    auto& watched = watched_[id];
    watched.course.take(event, findTracked(tracker_, id));
    take(event, watched);
    // This may end the session, and look for a last time before.
    tracker_.record(event);
    if (const auto there = watched_.find(id); there != watched_.end())
        if (const auto remark = there->second.course.takeRemark())
            apply({.sessionID = id, .correction = *remark, .kind = AgentEvidenceKind::hooks});
    forgetUntracked();
    plan();
}

void AgentWatch::take(const AgentEvent& event, Watched& watched)
{
    watched.agentsID = event.sessionID;
    if (event.agent == AgentKind::codex)
        return watched.threads.take(event);
    const auto& path = event.origin.transcript;
    const auto folder = path ? claudeStatusFolder(*path) : std::nullopt;
    if (!folder || event.origin.subagent)
        return;
    watched.statusFolder = folder;
    if (std::exchange(watched.transcriptPath, *path) != *path)
        watched.transcriptFile = {};
}

void AgentWatch::sessionDidBegin(const AgentPolicy& policy)
{
    policy_ = policy;
    lookNow(false);
}

void AgentWatch::sessionDidEnd()
{
    policy_.reset();
    evidence_.set({}); // nothing looks any more
    plan();
}

void AgentWatch::look() { lookNow(false); }

void AgentWatch::lastLook() { lookNow(true); }

void AgentWatch::lookNow(bool isLast)
{
    mainThread::check();
    if (!policy_)
        return;
    forgetUntracked();
    statuses_.clear();
    std::vector<Found> all;
    for (const auto& session : tracker_.sessions())
        if (const auto watched = watched_.find(session.id); watched != watched_.end())
            if (auto found = lookAt(session, watched->second, isLast))
                all.push_back(*std::move(found));
    // What keeps awake comes first: the rest may end the session.
    std::ranges::stable_partition(
        all, [](const Found& found) { return found.correction.activity == AgentActivity::working; });
    for (const auto& found : all)
        apply(found);
    plan();
}

std::optional<AgentWatch::Found> AgentWatch::lookAt(const AgentSession& session, Watched& watched, bool isLast)
{
    const auto [reading, kind] = session.agent == AgentKind::codex ? readCodex(watched, isLast) : readClaude(watched);
    if (evidence(session.id) != kind)
        evidence_.modify([&](auto& all) { all[session.id] = kind; });
    auto correction = watched.course.takeRemark();
    const auto current = correction ? correction->activity.value_or(session.activity) : session.activity;
    if (const auto judged = watched.course.judge(reading, current, system_.clock.now()))
        correction = judged;
    return correction ? std::optional{Found{session.id, *correction, kind}} : std::nullopt;
}

Process AgentWatch::stateOf(const Watched& watched) const
{
    const auto& process = watched.course.process();
    return process ? system_.processes.state(*process) : Process::unknown;
}

AgentWatch::Reading AgentWatch::readClaude(Watched& watched)
{
    const auto status = findStatus(watched);
    if (!status && !watched.hadStatus)
        return readClaudeTranscript(watched);
    Reading found{.reading = {.process = stateOf(watched), .claim = {}}};
    // The file of a killed process stays as it was.
    if (status && found.reading.process == Process::alive)
        found.reading.claim = statusClaim(*status, watched);
    if (found.reading.claim)
        found.kind = AgentEvidenceKind::statusFile;
    return found;
}

std::optional<AgentReading::Claim> AgentWatch::statusClaim(const ClaudeStatus& status, Watched& watched) const
{
    const bool isOfSession = status.sessionID == watched.agentsID;
    watched.hadStatus = watched.hadStatus || isOfSession;
    if (!status.activity)
        return {};
    // Otherwise the process has turned to another session, and is done with this one.
    return AgentReading::Claim{.activity = isOfSession ? *status.activity : AgentActivity::idle, .since = status.since};
}

/// The status that the session's process writes, also about another session once it was about this one.
std::optional<ClaudeStatus> AgentWatch::findStatus(Watched& watched)
{
    if (!watched.statusFolder)
        return {};
    if (const auto process = watched.course.process()) {
        auto status = readStatus(*watched.statusFolder + "/" + std::to_string(process->pid) + ".json");
        const bool isOfSession = status && status->sessionID == watched.agentsID;
        if (isOfSession && status->pid == process->pid)
            watched.course.adopt(*process);
        if (status && status->pid == process->pid && (isOfSession || watched.hadStatus))
            return status;
    }
    for (const auto& status : statusesIn(*watched.statusFolder)) {
        const ProcessIdentity process{.pid = status.pid, .start = status.processStart.value_or(0)};
        if (status.sessionID != watched.agentsID || !status.processStart
            || system_.processes.state(process) != Process::alive)
            continue;
        watched.course.adopt(process);
        return status;
    }
    return {};
}

/// What is torn was being written, and is whole a moment later.
std::optional<ClaudeStatus> AgentWatch::readStatus(const std::string& path) const
{
    constexpr std::uint64_t room = 4096; // for what it may have grown meanwhile
    constexpr int tries = 2;
    for (int i = 0; i < tries; ++i) {
        const auto facts = system_.files.facts(path);
        if (!facts)
            return {};
        const auto text = system_.files.read(path, *facts, 0, std::min(facts->size + room, statusLimit));
        if (const auto status = text ? claudeStatus(*text) : std::nullopt)
            return status;
    }
    return {};
}

const std::vector<ClaudeStatus>& AgentWatch::statusesIn(const std::string& folder)
{
    const auto [place, isNew] = statuses_.try_emplace(folder);
    if (isNew)
        for (const auto& name : system_.files.names(folder, statusFileLimit))
            if (const auto status = isStatusFile(name) ? readStatus(folder + "/" + name) : std::nullopt)
                place->second.push_back(*status);
    return place->second;
}

AgentWatch::Reading AgentWatch::readClaudeTranscript(Watched& watched)
{
    Reading found{.reading = {.process = stateOf(watched), .claim = {}}};
    if (watched.transcriptPath.empty() || !follow(watched.transcriptPath, watched.transcriptFile, watched.transcript))
        return found;
    found.kind = AgentEvidenceKind::transcript;
    // An end that the last event followed is that of an earlier turn.
    if (const auto ended = watched.transcript.endedAt(); ended && *ended > watched.course.lastEventAt())
        found.reading.claim = {.activity = AgentActivity::idle, .since = ended};
    return found;
}

AgentWatch::Reading AgentWatch::readCodex(Watched& watched, bool isLast)
{
    for (auto& thread : watched.threads.all())
        follow(thread.path, thread.file, thread.rollout);
    if (isLast && policy_->effectiveGraceDelay() < shortGrace)
        lookForAnswer(watched);
    Reading found{.reading = {.process = stateOf(watched), .claim = watched.threads.claim()}};
    if (found.reading.claim)
        found.kind = AgentEvidenceKind::transcript;
    return found;
}

void AgentWatch::lookForAnswer(Watched& watched)
{
    const auto now = system_.clock.now();
    const auto asked = watched.threads.unansweredSince();
    const auto& process = watched.course.process();
    if (asked && process && system_.processes.hasChildYoungerThan(*process, now - *asked - hookMargin))
        watched.threads.sawAnswer(now);
}

template <class Reader> bool AgentWatch::follow(const std::string& path, FollowedFile& file, Reader& reader)
{
    const auto facts = system_.files.facts(path);
    if (facts) {
        const auto piece = file.next(*facts);
        if (!piece)
            return true;
        if (const auto bytes = system_.files.read(path, *facts, piece->from, piece->length)) {
            if (piece->isSkip)
                reader.skip();
            else if (piece->isFresh)
                reader.restart(piece->from > 0);
            file.didRead(*facts, *piece, bytes->size());
            reader.take(*bytes);
            return true;
        }
    }
    file = {};
    reader.restart(false);
    return false;
}

void AgentWatch::apply(const Found& found)
{
    const auto* session = findTracked(tracker_, found.sessionID);
    const auto& [activity, since] = found.correction;
    if (!session || session->activity == activity)
        return;
    notify(onCorrection, found.sessionID, found.correction, found.kind);
    if (activity)
        tracker_.correct(found.sessionID, *activity, since);
    else
        tracker_.endUnheard(found.sessionID);
}

AgentEvidenceKind AgentWatch::evidence(const std::string& sessionID) const
{
    const auto& all = evidence_.get();
    const auto found = all.find(sessionID);
    return found == all.end() ? AgentEvidenceKind::hooks : found->second;
}

void AgentWatch::forgetUntracked()
{
    const auto isUntracked = [this](const auto& entry) { return !findTracked(tracker_, entry.first); };
    std::erase_if(watched_, isUntracked);
    if (std::ranges::any_of(evidence_.get(), isUntracked))
        evidence_.modify([&](auto& all) { std::erase_if(all, isUntracked); });
}

void AgentWatch::plan()
{
    if (!policy_ || tracker_.sessions().empty())
        nextLook_.reset();
    else if (!nextLook_)
        nextLook_ = system_.tasks.schedule(interval, lifetime_.guard([this] {
            nextLook_.reset();
            look();
        }));
}

} // namespace vespra
