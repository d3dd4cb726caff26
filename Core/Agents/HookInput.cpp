#include "Core/Agents/HookInput.h"

#include "Core/Agents/JSONPlainText.h"
#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace vespra {

namespace {

    using Text = std::optional<std::string>;

    /// Absent for what is no text.
    Text textOf(const JSON* value)
    {
        return value && value->is_string() ? Text{value->get<std::string>()} : std::nullopt;
    }

    bool isRunningAgent(const JSON& task)
    {
        constexpr std::array kinds{"subagent", "workflow", "teammate"};
        const auto holds = [&](const char* key, std::string_view value) {
            const auto found = task.find(key);
            return found != task.end() && *found == value;
        };
        return task.is_object() && holds("status", "running")
            && std::ranges::any_of(kinds, [&](const char* kind) { return holds("type", kind); });
    }

    bool listsRunningAgent(const JSON* tasks)
    {
        return tasks && tasks->is_array() && std::ranges::any_of(*tasks, isRunningAgent);
    }

    /// Puts a value, null if it could not be read, where it belongs.
    using Taker = void (*)(HookInput&, const JSON*);

    template <Text HookInput::* member> void takeTextOf(HookInput& input, const JSON* value)
    {
        input.*member = textOf(value);
    }

    /// The one place that says which key goes where; null for any other key.
    Taker takerFor(std::string_view key)
    {
        constexpr std::pair<std::string_view, Taker> takers[]{
            {"hook_event_name", takeTextOf<&HookInput::hookEventName>},
            {"session_id", takeTextOf<&HookInput::sessionID>},
            {"cwd", takeTextOf<&HookInput::cwd>},
            {"notification_type", takeTextOf<&HookInput::notificationType>},
            {"message", takeTextOf<&HookInput::message>},
            {"transcript_path", takeTextOf<&HookInput::transcriptPath>},
            {"agent_id", takeTextOf<&HookInput::agentID>},
            {"source", takeTextOf<&HookInput::source>},
            {"background_tasks",
                [](HookInput& input, const JSON* value) { input.hasRunningAgents = listsRunningAgent(value); }},
        };
        const auto* found = std::ranges::find(takers, key, &std::pair<std::string_view, Taker>::first);
        return found == std::end(takers) ? nullptr : found->second;
    }

    /// `key` is in its quotes.
    Taker takerNamed(std::string_view key)
    {
        if (!key.contains('\\'))
            return takerFor(key.substr(1, key.size() - 2));
        const auto name = parsedJSON(key);
        return name ? takerFor(name->get_ref<const std::string&>()) : nullptr;
    }

    /// Absent for what is neither a text nor a list of reasonable length, and for what cannot stand in UTF-8: an event
    /// is not lost with it.
    std::optional<JSON> readable(std::string_view json)
    {
        constexpr std::size_t longestList = 1 << 20;
        const bool isList = json.starts_with('[') && json.size() <= longestList;
        return json.starts_with('"') || isList ? parsedJSON(json) : std::nullopt;
    }

    bool isWhitespace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }
    bool isDigit(char c) { return c >= '0' && c <= '9'; }

    /// Whether a number or literal may hold `c`.
    bool isOfWord(char c)
    {
        return isDigit(c) || c == '-' || c == '+' || c == '.' || c == 'E' || (c >= 'a' && c <= 'z');
    }

    bool take(std::string_view& text, std::string_view characters)
    {
        if (text.empty() || !characters.contains(text.front()))
            return false;
        text.remove_prefix(1);
        return true;
    }

    bool takeDigits(std::string_view& text)
    {
        const auto end = std::ranges::find_if_not(text, isDigit);
        const auto count = static_cast<std::size_t>(end - text.begin());
        text.remove_prefix(count);
        return count > 0;
    }

    bool isNumber(std::string_view text)
    {
        take(text, "-");
        if (!take(text, "0") && !takeDigits(text))
            return false;
        if (take(text, ".") && !takeDigits(text))
            return false;
        if (take(text, "eE")) {
            take(text, "+-");
            if (!takeDigits(text))
                return false;
        }
        return text.empty();
    }

    bool isWord(std::string_view text) { return text == "true" || text == "false" || text == "null" || isNumber(text); }

} // namespace

std::optional<HookInput> parsedHookInput(std::string_view json)
{
    HookInputParser parser;
    if (parser.add(json) != HookInputParser::Progress::complete)
        return {};
    return parser.input();
}

HookInput hookInput(const JSON& object)
{
    HookInput input;
    for (const auto& [key, value] : object.items())
        if (const auto taker = takerFor(key))
            taker(input, &value);
    return input;
}

HookInputParser::Progress HookInputParser::add(std::string_view piece)
{
    while (!piece.empty() && place_ != Place::wrong)
        if (place_ == Place::insideKey || place_ == Place::insideText) {
            piece.remove_prefix(takeText(piece));
        } else if (place_ == Place::word) {
            piece.remove_prefix(takeWord(piece));
        } else {
            if (!isWhitespace(piece.front()) || place_ == Place::start)
                takeByte(piece.front());
            piece.remove_prefix(1);
        }
    if (place_ == Place::wrong)
        return Progress::invalid;
    return place_ == Place::end ? Progress::complete : Progress::incomplete;
}

/// How many bytes of `piece` belong to the text, its closing quote included.
std::size_t HookInputParser::takeText(std::string_view piece)
{
    const bool isEscaped = std::exchange(afterBackslash_, false);
    auto length = isEscaped ? 1 : lengthToQuoteOrBackslash(piece);
    bool isOver = false;
    if (!isEscaped && length < piece.size()) {
        afterBackslash_ = piece[length] == '\\';
        isOver = !afterBackslash_;
        ++length;
    }
    keep(piece.substr(0, length));
    if (isOver && place_ == Place::insideKey)
        place_ = Place::colon;
    else if (isOver)
        endValue();
    return length;
}

/// How many bytes of `piece` belong to the number or literal, which ends at the first byte that cannot be part of one.
std::size_t HookInputParser::takeWord(std::string_view piece)
{
    const auto length = static_cast<std::size_t>(std::ranges::find_if_not(piece, isOfWord) - piece.begin());
    word_ += piece.substr(0, length);
    if (length == piece.size())
        return length;
    keep(word_);
    const bool isRight = isWord(word_);
    word_.clear();
    if (isRight)
        endValue();
    else
        place_ = Place::wrong;
    return length;
}

/// White space comes here only at the start.
void HookInputParser::takeByte(char byte)
{
    switch (place_) {
    case Place::start:
        return takeStart(byte);
    case Place::firstKey:
        if (byte == '}')
            return close(byte);
        [[fallthrough]];
    case Place::key:
        if (byte == '"')
            return beginText(Place::insideKey);
        break;
    case Place::colon:
        if (byte == ':')
            return takeColon();
        break;
    case Place::firstElement:
        if (byte == ']')
            return close(byte);
        [[fallthrough]];
    case Place::value:
        return beginValue(byte);
    case Place::afterValue:
        return byte == ',' ? separate() : close(byte);
    case Place::insideKey:
    case Place::insideText:
    case Place::word:
    case Place::end:
    case Place::wrong:
        break;
    }
    place_ = Place::wrong;
}

void HookInputParser::takeStart(char byte)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (markLength_ < byteOrderMark.size() && byte == byteOrderMark[markLength_]) {
        ++markLength_;
        return;
    }
    const bool isMarkCut = markLength_ % byteOrderMark.size() != 0;
    markLength_ = byteOrderMark.size();
    if (!isMarkCut && byte == '{')
        open('}', Place::firstKey);
    else if (isMarkCut || !isWhitespace(byte))
        place_ = Place::wrong;
}

void HookInputParser::beginText(Place place)
{
    place_ = place;
    keep("\"");
}

void HookInputParser::beginValue(char byte)
{
    if (byte == '{')
        return open('}', Place::firstKey);
    if (byte == '[')
        return open(']', Place::firstElement);
    if (byte == '"')
        return beginText(Place::insideText);
    if (!isOfWord(byte)) {
        place_ = Place::wrong;
        return;
    }
    place_ = Place::word;
    word_ = byte;
}

void HookInputParser::open(char closing, Place place)
{
    keep(closing == '}' ? "{" : "[");
    // A list of its own instead of recursion: how deep an agent's values nest is not for this program to trust.
    closings_ += closing;
    place_ = place;
}

void HookInputParser::close(char closing)
{
    if (closings_.back() != closing) {
        place_ = Place::wrong;
        return;
    }
    keep({&closing, 1});
    closings_.pop_back();
    endValue();
}

void HookInputParser::takeColon()
{
    if (closings_.size() == 1)
        wanted_ = takerNamed(std::exchange(kept_, {}));
    else
        keep(":");
    place_ = Place::value;
}

void HookInputParser::separate()
{
    keep(",");
    place_ = closings_.back() == '}' ? Place::key : Place::value;
}

void HookInputParser::endValue()
{
    place_ = closings_.empty() ? Place::end : Place::afterValue;
    if (!wanted_ || closings_.size() > 1)
        return;
    const auto value = readable(std::exchange(kept_, {}));
    std::exchange(wanted_, nullptr)(input_, value ? &*value : nullptr);
}

void HookInputParser::keep(std::string_view bytes)
{
    if (wanted_ || (place_ == Place::insideKey && closings_.size() == 1))
        kept_ += bytes;
}

} // namespace vespra
