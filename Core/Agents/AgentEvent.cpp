#include "Core/Agents/AgentEvent.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace vespra {

namespace {

    using SignalTable = std::array<std::pair<std::string_view, AgentSignal>, 7>;
    constexpr SignalTable signalsByHookEvent{{
        {"SessionStart", AgentSignal::sessionStarted},
        {"UserPromptSubmit", AgentSignal::working},
        {"PostToolUse", AgentSignal::working},
        {"PermissionRequest", AgentSignal::waitingForApproval},
        {"Stop", AgentSignal::finished},
        {"Interrupt", AgentSignal::finished},
        {"SessionEnd", AgentSignal::sessionEnded},
    }};
    constexpr std::array<std::pair<std::string_view, AgentSignal>, 5> signalsByNotificationType{{
        {"permission_prompt", AgentSignal::waitingForApproval},
        {"agent_needs_input", AgentSignal::waitingForApproval},
        {"elicitation_dialog", AgentSignal::waitingForApproval},
        {"idle_prompt", AgentSignal::finished},
        {"agent_completed", AgentSignal::finished},
    }};

    std::optional<AgentSignal> lookUp(const auto& table, std::string_view name)
    {
        const auto found = std::ranges::find(table, name, [](const auto& row) { return row.first; });
        return found == table.end() ? std::nullopt : std::optional{found->second};
    }

    /// Older agents send no type, only a sentence.
    std::optional<AgentSignal> signalOfMessage(std::string message)
    {
        const auto lowered = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        std::ranges::transform(message, message.begin(), lowered);
        if (message.contains("permission"))
            return AgentSignal::waitingForApproval;
        if (message.contains("waiting for your input"))
            return AgentSignal::finished;
        return {};
    }

    std::optional<AgentSignal> signalOf(const HookInput& input)
    {
        if (*input.hookEventName != "Notification")
            return lookUp(signalsByHookEvent, *input.hookEventName);
        if (input.notificationType)
            return lookUp(signalsByNotificationType, *input.notificationType);
        return signalOfMessage(input.message.value_or(""));
    }

    void addOrigin(JSON& json, const AgentOrigin& origin)
    {
        if (const auto& process = origin.process) {
            json["process"] = {{"pid", process->pid}, {"start", process->start}};
            if (process->space != 0)
                json["process"]["space"] = process->space;
            if (origin.isProcessCertain)
                json["process"]["isCertain"] = true;
        }
        if (origin.transcript)
            json["transcript"] = *origin.transcript;
        if (origin.subagent)
            json["subagent"] = *origin.subagent;
        if (origin.isCompaction)
            json["isCompaction"] = true;
        if (origin.leavesAgentsRunning)
            json["leavesAgentsRunning"] = true;
    }

    std::optional<std::string> unlessEmpty(const std::optional<std::string>& text)
    {
        return text && !text->empty() ? text : std::nullopt;
    }

    const JSON* member(const JSON& json, std::string_view key)
    {
        const auto found = json.is_object() ? json.find(key) : json.end();
        return found == json.end() ? nullptr : &*found;
    }

    std::optional<std::string> textOf(const JSON& json, std::string_view key)
    {
        const auto* value = member(json, key);
        return value && value->is_string() && *value != "" ? std::optional{value->get<std::string>()} : std::nullopt;
    }

    bool flagOf(const JSON& json, std::string_view key)
    {
        const auto* value = member(json, key);
        return value && *value == true;
    }

    std::optional<std::uint64_t> numberOf(const JSON& json, std::string_view key)
    {
        const auto* value = member(json, key);
        return value && value->is_number_unsigned() ? std::optional{value->get<std::uint64_t>()} : std::nullopt;
    }

    std::optional<ProcessIdentity> processOf(const JSON& json)
    {
        constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
        const auto pid = numberOf(json, "pid");
        const auto start = numberOf(json, "start");
        if (!pid || *pid == 0 || *pid > largest || !start)
            return {};
        return ProcessIdentity{
            .pid = static_cast<std::int64_t>(*pid), .start = *start, .space = numberOf(json, "space").value_or(0)};
    }

    AgentOrigin originOf(const JSON& json)
    {
        const auto* process = member(json, "process");
        return {.process = process ? processOf(*process) : std::nullopt,
            .isProcessCertain = process && flagOf(*process, "isCertain"),
            .transcript = textOf(json, "transcript"),
            .subagent = textOf(json, "subagent"),
            .isCompaction = flagOf(json, "isCompaction"),
            .leavesAgentsRunning = flagOf(json, "leavesAgentsRunning")};
    }

} // namespace

std::optional<AgentEvent> agentEvent(std::string_view hookInput, AgentKind agent, Instant date)
{
    const auto input = parsedHookInput(hookInput);
    return input ? agentEvent(*input, agent, date) : std::nullopt;
}

std::optional<AgentEvent> agentEvent(const HookInput& input, AgentKind agent, Instant date)
{
    if (!input.hookEventName || !input.sessionID || input.sessionID->empty())
        return {};
    const auto signal = signalOf(input);
    if (!signal)
        return {};
    AgentEvent event{.agent = agent, .sessionID = *input.sessionID, .cwd = input.cwd, .signal = *signal, .date = date};
    event.origin = {.transcript = unlessEmpty(input.transcriptPath),
        .subagent = unlessEmpty(input.agentID),
        .isCompaction = *signal == AgentSignal::sessionStarted && input.source == "compact",
        .leavesAgentsRunning = *signal == AgentSignal::finished && input.hasRunningAgents};
    return event;
}

std::string encoded(const AgentEvent& event)
{
    JSON json{{"agent", rawValue(event.agent)}, {"sessionID", event.sessionID}};
    if (event.cwd)
        json["cwd"] = *event.cwd;
    json["signal"] = rawValue(event.signal);
    json["date"] = numberJSON(event.date.sinceReferenceDate());
    addOrigin(json, event.origin);
    return json.dump();
}

std::expected<AgentEvent, DecodingError> decodedAgentEvent(std::string_view line)
{
    const auto json = parsedJSON(line);
    if (!json)
        return std::unexpected{DecodingError{{}, "expected JSON"}};
    return decoded(JSONSource{*json}, [](const JSONSource& source) {
        AgentEvent event{
            .agent = source.required("agent").rawValue<AgentKind>(),
            .sessionID = source.required("sessionID").string(),
            .cwd = {},
            .signal = source.required("signal").rawValue<AgentSignal>(),
            .date = Instant::fromReferenceDate(Seconds{source.required("date").number()}),
        };
        if (event.sessionID.empty())
            source.required("sessionID").fail("must not be empty");
        if (const auto cwd = source.optional("cwd"))
            event.cwd = cwd->string();
        event.origin = originOf(source.value());
        return event;
    });
}

} // namespace vespra
