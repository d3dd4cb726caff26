#pragma once

#include "App/Agents/AgentWatch.h"
#include "App/Agents/simulated/SimulatedAgents.h"
#include "Core/Agents/AgentEndCondition.h"
#include "Core/Energy/ScriptedMonitors.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Core/Session/SessionCoordinator.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace vespra {

/// An agent session in virtual time with one agent, whose events and files come as a text says: "0 UserPromptSubmit;
/// 0.2 busy; 10 Stop; 10.5 idle".
class AgentCourses {
public:
    enum class Evidence { none, whole, missing, torn, unknown };

    AgentCourses(AgentKind agent, Evidence evidence, Seconds grace)
        : agent_{agent}
        , evidence_{evidence}
    {
        processes_.alive.emplace(pid, start);
        watch_.onCorrection = [this](const std::string&, const AgentCorrection& correction, AgentEvidenceKind) {
            corrections += correction.activity ? std::string{rawValue(*correction.activity)} + " " : "ended ";
        };
        coordinator_.onEvent = [this](const SessionEvent& event) {
            if (std::holds_alternative<event::Ended>(event))
                endedAt = time_.now() - begun_;
        };
        const auto condition = std::make_shared<AgentEndCondition>(
            tracker_, AgentPolicy{.graceDelay = grace}, time_, evidence == Evidence::none ? nullptr : &watch_);
        coordinator_.start(plan::Agent{}, {}, condition).value();
    }

    /// Plays `steps`, and on for half an hour.
    void play(const std::string& steps)
    {
        std::istringstream all{steps};
        for (std::string step; std::getline(all, step, ';');) {
            std::istringstream parts{step};
            double at = 0;
            std::string word;
            parts >> at >> word;
            time_.advanceTo(begun_ + Seconds{at});
            perform(word);
        }
        time_.advance(30min);
    }

    std::optional<Seconds> endedAt;
    std::string corrections;
    AgentTracker& tracker() { return tracker_; }
    VirtualTime& time() { return time_; }
    AgentWatch& watch() { return watch_; }

private:
    std::int64_t pid = 77;
    static constexpr std::uint64_t start = 5;
    static constexpr const char* statusFile = "/h/sessions/77.json";

    void perform(const std::string& word)
    {
        if (word == "restart") {
            processes_.alive.clear();
            processes_.alive.emplace(++pid, start);
            isProcessCertain_ = true;
        } else if (word == "much") {
            for (int line = 0; line < 3000; ++line)
                append("/r/main.jsonl", R"("type":"response_item","payload":")" + std::string(150, 'x') + '"');
        } else if (word == "kill")
            processes_.alive.clear();
        else if (word == "child")
            processes_.children[pid].push_back(time_.now());
        else if (word[0] >= 'A' && word[0] <= 'Z')
            report(word);
        else if (word.starts_with("interrupted"))
            append("/h/projects/p/s.jsonl",
                R"("type":"user","message":{"role":"user","content":[{"type":"text","text":"[Request interrupted by user]"}]})");
        else if (agent_ == AgentKind::claudeCode)
            writeStatus(word);
        else
            append(word.starts_with("sub-") ? "/r/sub.jsonl" : "/r/main.jsonl", rolloutLine(word));
    }

    /// "Stop+tasks": the event, and what its input says besides.
    void report(const std::string& word)
    {
        const auto plus = word.find('+');
        const auto more = plus == std::string::npos ? "" : word.substr(plus + 1);
        const bool isSub = more == "sub";
        JSON input{{"session_id", "s"}, {"hook_event_name", word.substr(0, plus)}};
        input["transcript_path"] = agent_ == AgentKind::claudeCode ? "/h/projects/p/s.jsonl"
            : isSub                                                ? "/r/sub.jsonl"
                                                                   : "/r/main.jsonl";
        if (isSub)
            input["agent_id"] = "a1";
        if (more == "tasks")
            input["background_tasks"] = {{{"type", "subagent"}, {"status", "running"}}};
        input[word.starts_with("Notification") ? "notification_type" : "source"] = more;
        auto event = agentEvent(input.dump(), agent_, time_.now());
        if (!event)
            return;
        event->origin.process = ProcessIdentity{.pid = pid, .start = start};
        event->origin.isProcessCertain = isProcessCertain_;
        evidence_ == Evidence::none ? tracker_.record(*event) : watch_.record(*event);
    }

    void writeStatus(const std::string& word)
    {
        JSON status{{"pid", pid}, {"sessionId", word == "other" ? "another" : "s"}};
        status["status"] = evidence_ == Evidence::unknown ? "dreaming" : word == "other" ? "idle" : word;
        status["statusUpdatedAt"] = std::chrono::floor<std::chrono::milliseconds>(time_.now().since1970()).count();
        auto text = status.dump();
        if (evidence_ == Evidence::torn)
            text.resize(text.size() / 2);
        if (evidence_ != Evidence::missing)
            files_.files[statusFile] = text;
    }

    static std::string rolloutLine(const std::string& word)
    {
        const auto ending = word.substr(word.starts_with("sub-") ? 4 : 0);
        const std::string type = ending == "started" ? "task_started"
            : ending == "complete"                   ? "task_complete"
            : ending == "aborted"                    ? "turn_aborted"
                                                     : "token_count";
        return R"("ordinal":7,"type":"event_msg","payload":{"type":")" + type + R"(","info":{}})";
    }

    void append(const std::string& path, std::string rest)
    {
        if (evidence_ == Evidence::missing)
            return;
        if (const auto type = rest.find("type"); evidence_ == Evidence::unknown)
            rest.replace(type, 4, "kind");
        const auto date = time_.now().iso8601();
        const auto line = R"({"timestamp":")" + date + "\"," + rest + "}\n";
        auto& file = files_.files[path];
        file = file.value_or("") + (evidence_ == Evidence::torn ? line.substr(0, line.size() / 2) : line);
    }

    AgentKind agent_;
    Evidence evidence_;
    bool isProcessCertain_ = false;
    VirtualTime time_{Instant::fromISO8601("2026-01-01T12:00:00Z").value()};
    Instant begun_ = time_.now();
    SimulatedAgentFiles files_;
    SimulatedAgentProcesses processes_{time_};
    ScriptedPowerSource power_{PowerSnapshot{.isOnACPower = true, .batteryLevel = 90}};
    ScriptedThermal thermal_{ThermalLevel::nominal};
    AgentTracker tracker_;
    AgentWatch watch_{tracker_, {.files = files_, .processes = processes_, .clock = time_, .tasks = time_}};
    SessionCoordinator coordinator_{{},
        Calendar::inZone("UTC").value(),
        {.clock = time_, .scheduler = time_, .power = power_, .thermal = thermal_},
        helper::NotInstalled{}};
};

} // namespace vespra
