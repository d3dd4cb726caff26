#include "Core/Agents/ClaudeStatus.h"

#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <limits>

namespace vespra {

namespace {

    /// Up to the bracket that closes the first one; empty if there is no such bracket.
    std::string_view firstObject(std::string_view bytes)
    {
        const auto start = bytes.find_first_not_of(" \t\r\n");
        if (start == std::string_view::npos || bytes[start] != '{')
            return {};
        int depth = 0;
        bool isInText = false;
        for (auto i = start; i < bytes.size(); ++i) {
            const char byte = bytes[i];
            if (isInText && byte == '\\')
                ++i;
            else if (byte == '"')
                isInText = !isInText;
            else if (!isInText && (byte == '{' || byte == '['))
                ++depth;
            else if (!isInText && (byte == '}' || byte == ']') && --depth == 0)
                return bytes.substr(start, i - start + 1);
        }
        return {};
    }

    const JSON& member(const JSON& object, const char* key)
    {
        static const JSON absent;
        const auto found = object.find(key);
        return found == object.end() ? absent : *found;
    }

    std::optional<AgentActivity> activityOf(const JSON& object)
    {
        const auto& status = member(object, "status");
        if (status == "busy")
            return AgentActivity::working;
        // A command in the background may be a server that never ends.
        if (status == "idle" || status == "shell")
            return AgentActivity::idle;
        // Menus that the user has opened are no question of the agent's.
        if (status == "waiting" && member(object, "waitingFor") != "dialog open")
            return AgentActivity::waitingForApproval;
        return {};
    }

    std::optional<Instant> dateOf(const JSON& milliseconds)
    {
        constexpr std::uint64_t latest = 7'000'000'000'000; // in the year 2191
        if (!milliseconds.is_number_unsigned() || milliseconds.get<std::uint64_t>() > latest)
            return {};
        return Instant{std::chrono::milliseconds{milliseconds.get<std::int64_t>()}};
    }

    /// Older versions do not tell the status' date from that of other changes.
    std::optional<Instant> sinceOf(const JSON& object)
    {
        const auto since = dateOf(member(object, "statusUpdatedAt"));
        return since ? since : dateOf(member(object, "updatedAt"));
    }

    std::optional<std::uint64_t> startOf(const JSON& object)
    {
        const auto& written = member(object, "procStart");
        if (!written.is_string())
            return {};
        const auto& text = written.get_ref<const std::string&>();
        std::uint64_t start = 0;
        const auto* end = text.data() + text.size();
        const auto [rest, failure] = std::from_chars(text.data(), end, start);
        return failure == std::errc{} && rest == end ? std::optional{start} : std::nullopt;
    }

} // namespace

std::optional<ClaudeStatus> claudeStatus(std::string_view bytes)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
    const auto json = parsedJSON(firstObject(bytes));
    if (!json || !json->is_object())
        return {};
    const auto& pid = member(*json, "pid");
    const auto& sessionID = member(*json, "sessionId");
    if (!pid.is_number_unsigned() || pid == 0 || pid > largest || !sessionID.is_string() || sessionID == "")
        return {};
    return ClaudeStatus{.pid = pid.get<std::int64_t>(),
        .sessionID = sessionID.get<std::string>(),
        .processStart = startOf(*json),
        .activity = activityOf(*json),
        .since = sinceOf(*json)};
}

std::optional<std::string> claudeStatusFolder(std::string_view transcript)
{
    const auto project = transcript.substr(0, transcript.rfind('/'));
    const auto projects = project.substr(0, project.rfind('/'));
    constexpr std::string_view name = "/projects";
    if (!transcript.starts_with('/') || !transcript.ends_with(".jsonl") || !projects.ends_with(name))
        return {};
    return std::string{projects.substr(0, projects.size() - name.size())} + "/sessions";
}

} // namespace vespra
