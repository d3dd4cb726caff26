#include "Core/Agents/ClaudeTranscript.h"

#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    bool holds(const JSON& object, const char* key, const auto& value)
    {
        const auto found = object.find(key);
        return found != object.end() && *found == value;
    }

    bool isMessage(std::string_view line)
    {
        const bool isOfMain = !line.contains(R"("isSidechain":true)");
        return isOfMain && (line.contains(R"("type":"user")") || line.contains(R"("type":"assistant")"));
    }

    bool isInterruption(const JSON& message)
    {
        const auto content = message.is_object() ? message.find("content") : message.end();
        if (content == message.end() || !content->is_array() || content->empty())
            return false;
        const auto& last = content->back();
        const auto text = last.is_object() ? last.find("text") : last.end();
        return text != last.end() && text->is_string()
            && text->get_ref<const std::string&>().starts_with("[Request interrupted by user");
    }

    /// The date of a message that ends its turn.
    std::optional<Instant> endOf(const JSON& line)
    {
        const auto message = line.find("message");
        const bool isEnd = holds(line, "isApiErrorMessage", true)
            || (holds(line, "type", "user") && message != line.end() && isInterruption(*message));
        const auto date = line.find("timestamp");
        if (!isEnd || date == line.end() || !date->is_string())
            return {};
        return Instant::fromISO8601(date->get_ref<const std::string&>());
    }

} // namespace

void ClaudeTranscript::take(std::string_view bytes)
{
    lines_.take(bytes, [this](const LineHeads::Line& line) { takeLine(line); });
}

void ClaudeTranscript::restart(bool isInsideLine)
{
    *this = {};
    lines_.restart(isInsideLine);
}

/// Messages that end a turn are short; other lines need not be read as JSON.
void ClaudeTranscript::takeLine(const LineHeads::Line& line)
{
    if (!isMessage(line.head))
        return;
    endedAt_.reset();
    const bool isCandidate = line.head.contains("[Request interrupted") || line.head.contains("isApiErrorMessage");
    if (const auto json = line.isWhole && isCandidate ? parsedJSON(line.head) : std::nullopt; json && json->is_object())
        endedAt_ = endOf(*json);
}

} // namespace vespra
