#include "Core/Agents/HookInput.h"

#include "Core/Agents/JSONPlainText.h"
#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace vespra {

namespace {

    /// The one place that says which key goes where; nothing for any other key.
    std::optional<std::string>* memberFor(HookInput& input, std::string_view key)
    {
        constexpr std::pair<std::string_view, std::optional<std::string> HookInput::*> members[]{
            {"hook_event_name", &HookInput::hookEventName},
            {"session_id", &HookInput::sessionID},
            {"cwd", &HookInput::cwd},
            {"notification_type", &HookInput::notificationType},
            {"message", &HookInput::message},
        };
        for (const auto& [name, member] : members)
            if (name == key)
                return &(input.*member);
        return nullptr;
    }

    /// Every operation begins at `position_` and leaves it behind what it has read or passed over; false if the input
    /// is not JSON there. Of what is not wanted only the form counts: what an agent cuts off within a character leaves
    /// half of a pair of escapes in its texts, and its numbers may be larger than any that a program holds.
    class HookInputParser {
    public:
        explicit HookInputParser(std::string_view text)
            : text_{text}
        {
        }

        std::optional<HookInput> document()
        {
            constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
            if (text_.starts_with(byteOrderMark))
                position_ = byteOrderMark.size();
            skipWhitespace();
            if (!readObject())
                return {};
            skipWhitespace();
            return position_ == text_.size() ? std::optional{std::move(input_)} : std::nullopt;
        }

    private:
        bool readObject()
        {
            if (!take('{'))
                return false;
            skipWhitespace();
            if (take('}'))
                return true;
            do {
                skipWhitespace();
                if (!readMember())
                    return false;
                skipWhitespace();
            } while (take(','));
            return take('}');
        }

        bool readMember()
        {
            const auto keyBegin = position_;
            if (!skipText())
                return false;
            auto* wanted = memberNamed(since(keyBegin));
            if (!skipColon())
                return false;
            const auto valueBegin = position_;
            return skipValue() && (!wanted || read(since(valueBegin), *wanted));
        }

        /// `key` is in its quotes.
        std::optional<std::string>* memberNamed(std::string_view key)
        {
            if (!key.contains('\\'))
                return memberFor(input_, key.substr(1, key.size() - 2));
            const auto name = parsedJSON(key);
            return name ? memberFor(input_, name->get_ref<const std::string&>()) : nullptr;
        }

        /// Of a key that comes twice the last value counts, whatever it is.
        static bool read(std::string_view json, std::optional<std::string>& member)
        {
            auto value = parsedJSON(json);
            if (!value)
                return false;
            if (value->is_string())
                member = std::move(value->get_ref<std::string&>());
            else
                member.reset();
            return true;
        }

        /// Without recursion: how deep an agent's values nest is not for this program to trust.
        bool skipValue()
        {
            do {
                if (next() == '{' || next() == '[') {
                    if (!open())
                        return false;
                } else if (!(next() == '"' ? skipText() : skipWord())) {
                    return false;
                } else if (!skipToNextValue()) {
                    return false;
                }
            } while (!closings_.empty());
            return true;
        }

        /// Up to the first value in the list, or behind the list and what ends with it.
        bool open()
        {
            const char closing = next() == '{' ? '}' : ']';
            ++position_;
            skipWhitespace();
            if (take(closing))
                return skipToNextValue();
            closings_ += closing;
            return closing == ']' || skipKey();
        }

        /// From the end of a value to the next one in the same list or in one further out.
        bool skipToNextValue()
        {
            while (!closings_.empty()) {
                skipWhitespace();
                if (take(',')) {
                    skipWhitespace();
                    return closings_.back() == ']' || skipKey();
                }
                if (!take(closings_.back()))
                    return false;
                closings_.pop_back();
            }
            return true;
        }

        bool skipKey() { return skipText() && skipColon(); }

        bool skipColon()
        {
            skipWhitespace();
            if (!take(':'))
                return false;
            skipWhitespace();
            return true;
        }

        bool skipText()
        {
            if (!take('"'))
                return false;
            while (true) {
                position_ += lengthToQuoteOrBackslash(text_.substr(position_));
                if (take('"'))
                    return true;
                if (text_.size() - position_ < 2)
                    return false;
                position_ += 2; // the backslash and what it escapes
            }
        }

        /// A number or literal.
        bool skipWord()
        {
            for (const std::string_view literal : {"true", "false", "null"})
                if (text_.substr(position_).starts_with(literal)) {
                    position_ += literal.size();
                    return true;
                }
            return skipNumber();
        }

        bool skipNumber()
        {
            take('-');
            if (!take('0') && !skipDigits())
                return false;
            if (take('.') && !skipDigits())
                return false;
            if (!take('e') && !take('E'))
                return true;
            if (!take('+'))
                take('-');
            return skipDigits();
        }

        bool skipDigits()
        {
            const auto begin = position_;
            while (next() >= '0' && next() <= '9')
                ++position_;
            return position_ > begin;
        }

        void skipWhitespace()
        {
            while (next() == ' ' || next() == '\n' || next() == '\t' || next() == '\r')
                ++position_;
        }

        /// Zero, which stands nowhere outside a text, at the end.
        char next() const { return position_ < text_.size() ? text_[position_] : '\0'; }

        bool take(char c)
        {
            if (next() != c)
                return false;
            ++position_;
            return true;
        }

        std::string_view since(std::size_t begin) const { return text_.substr(begin, position_ - begin); }

        std::string_view text_;
        std::size_t position_ = 0;
        std::string closings_; // of the lists that are open, the innermost last
        HookInput input_;
    };

} // namespace

std::optional<HookInput> parsedHookInput(std::string_view json) { return HookInputParser{json}.document(); }

HookInput hookInput(const JSON& object)
{
    HookInput input;
    for (const auto& [key, value] : object.items())
        if (auto* member = memberFor(input, key); member && value.is_string())
            *member = value.get<std::string>();
    return input;
}

void HookInputProgress::add(std::string_view piece)
{
    while (!piece.empty())
        piece.remove_prefix(inText_ ? passText(piece) : passStructure(piece));
}

/// How many bytes of `piece` belong to the text, its closing quote included.
std::size_t HookInputProgress::passText(std::string_view piece)
{
    if (std::exchange(afterBackslash_, false))
        return 1;
    const auto length = lengthToQuoteOrBackslash(piece);
    if (length == piece.size())
        return length;
    afterBackslash_ = piece[length] == '\\';
    inText_ = afterBackslash_;
    return length + 1;
}

/// How many bytes of `piece` stand before the next text, its opening quote included.
std::size_t HookInputProgress::passStructure(std::string_view piece)
{
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const char c = piece[i];
        if (c == '"') {
            inText_ = true;
            return i + 1;
        }
        if (c == '{' || c == '[')
            ++depth_;
        else if ((c == '}' || c == ']') && --depth_ <= 0)
            isComplete_ = true;
    }
    return piece.size();
}

} // namespace vespra
