#include "Core/Agents/HookInput.h"

#include "Core/Agents/JSONPlainText.h"
#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace vespra {

namespace {

    using Member = std::optional<std::string> HookInput::*;

    /// The one place that says which key goes where; null for any other key.
    Member memberFor(std::string_view key)
    {
        constexpr std::pair<std::string_view, Member> members[]{
            {"hook_event_name", &HookInput::hookEventName},
            {"session_id", &HookInput::sessionID},
            {"cwd", &HookInput::cwd},
            {"notification_type", &HookInput::notificationType},
            {"message", &HookInput::message},
        };
        const auto* found = std::ranges::find(members, key, &std::pair<std::string_view, Member>::first);
        return found == std::end(members) ? nullptr : found->second;
    }

    /// `key` is in its quotes.
    Member memberNamed(std::string_view key)
    {
        if (!key.contains('\\'))
            return memberFor(key.substr(1, key.size() - 2));
        const auto name = parsedJSON(key);
        return name ? memberFor(name->get_ref<const std::string&>()) : nullptr;
    }

    /// Absent for what is no text, and for a text that cannot stand in UTF-8: an event is not lost with it.
    std::optional<std::string> readableText(std::string_view json)
    {
        auto text = json.starts_with('"') ? parsedJSON(json) : std::nullopt;
        return text ? std::optional{std::move(text->get_ref<std::string&>())} : std::nullopt;
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
        if (const auto member = memberFor(key); member && value.is_string())
            input.*member = value.get<std::string>();
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
        wanted_ = memberNamed(std::exchange(kept_, {}));
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
    if (wanted_ && closings_.size() <= 1)
        input_.*std::exchange(wanted_, nullptr) = readableText(std::exchange(kept_, {}));
}

void HookInputParser::keep(std::string_view bytes)
{
    if (wanted_ || (place_ == Place::insideKey && closings_.size() == 1))
        kept_ += bytes;
}

} // namespace vespra
