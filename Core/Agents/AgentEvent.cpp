#include "Core/Agents/AgentEvent.h"

#include <nlohmann/json.hpp>

#include <algorithm>

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
    return AgentEvent{.agent = agent, .sessionID = *input.sessionID, .cwd = input.cwd, .signal = *signal, .date = date};
}

std::string encoded(const AgentEvent& event)
{
    JSON json{{"agent", rawValue(event.agent)}, {"sessionID", event.sessionID}};
    if (event.cwd)
        json["cwd"] = *event.cwd;
    json["signal"] = rawValue(event.signal);
    json["date"] = numberJSON(event.date.sinceReferenceDate());
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
        return event;
    });
}

} // namespace vespra
