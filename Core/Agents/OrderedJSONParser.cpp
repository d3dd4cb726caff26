#include "Core/Agents/JSONPlainText.h"
#include "Core/Agents/OrderedJSON.h"
#include "Core/Coding/UTF8.h"

#include <algorithm>
#include <iterator>

namespace vespra {

/// Every reading operation begins at `position_` and leaves it behind what it has read; if it returns false,
/// `position_` is where the text is wrong.
class OrderedJSONParser {
public:
    explicit OrderedJSONParser(std::string_view text)
        : text_{text}
    {
    }

    std::expected<OrderedJSON, OrderedJSON::ParseError> document()
    {
        entries_.emplace_back();
        skipWhitespace();
        if (!read())
            return std::unexpected{OrderedJSON::ParseError::invalid(position_)};
        skipWhitespace();
        if (position_ < text_.size())
            return std::unexpected{OrderedJSON::ParseError::invalid(position_)};
        return std::move(entries_.back().value);
    }

private:
    /// Reads the value that begins here into the last entry.
    bool read()
    {
        switch (next()) {
        case '"':
            return readText();
        case '[':
            return readArray();
        case '{':
            return readObject();
        case 't':
            return readLiteral("true", true);
        case 'f':
            return readLiteral("false", false);
        case 'n':
            return readLiteral("null", OrderedJSON::Null{});
        default:
            return readNumber();
        }
    }

    OrderedJSON::Form& form() { return entries_.back().value.form_; }

    bool readLiteral(std::string_view literal, auto meaning)
    {
        for (const char c : literal)
            if (!take(c))
                return false;
        form() = meaning;
        return true;
    }

    bool readObject()
    {
        const auto outer = entries_.size();
        const auto readMember = [this] {
            if (!readString(entries_.emplace_back().key))
                return false;
            skipWhitespace();
            if (!take(':'))
                return false;
            skipWhitespace();
            return read();
        };
        if (!readList('}', readMember))
            return false;

        const auto first = entries_.begin() + static_cast<std::ptrdiff_t>(outer);
        auto members = std::make_shared<const OrderedJSON::Object>(
            std::move_iterator{first}, std::move_iterator{entries_.end()});
        entries_.erase(first, entries_.end());
        form() = std::move(members);
        return true;
    }

    bool readArray()
    {
        const auto outer = entries_.size();
        const auto readElement = [this] {
            entries_.emplace_back();
            return read();
        };
        if (!readList(']', readElement))
            return false;

        const auto first = entries_.begin() + static_cast<std::ptrdiff_t>(outer);
        OrderedJSON::Array elements;
        elements.reserve(entries_.size() - outer);
        for (auto entry = first; entry != entries_.end(); ++entry)
            elements.push_back(std::move(entry->value));
        entries_.erase(first, entries_.end());
        form() = std::make_shared<const OrderedJSON::Array>(std::move(elements));
        return true;
    }

    /// From the opening bracket to the closing one.
    bool readList(char closing, auto readEntry)
    {
        if (depth_ == OrderedJSON::deepestNesting)
            return false;
        ++depth_;
        ++position_;
        skipWhitespace();
        bool isOpen = !take(closing);
        while (isOpen) {
            skipWhitespace();
            if (!readEntry())
                return false;
            skipWhitespace();
            isOpen = take(',');
            if (!isOpen && !take(closing))
                return false;
        }
        --depth_;
        return true;
    }

    bool readText() { return readString(form().emplace<std::string>()); }

    bool readString(std::string& string)
    {
        if (!take('"'))
            return false;
        while (true) {
            const auto length = plainLength(text_.substr(position_));
            string.append(text_, position_, length);
            position_ += length;
            if (take('"'))
                return true;
            if (!(next() == '\\' ? readEscape(string) : readCharacter(string)))
                return false;
        }
    }

    /// A character beyond ASCII.
    bool readCharacter(std::string& string)
    {
        const auto rest = text_.substr(position_);
        const auto length = leadingUTF8Length(rest);
        if (length < 2)
            return false;
        string.append(rest, 0, length);
        position_ += length;
        return true;
    }

    bool readEscape(std::string& string)
    {
        ++position_;
        if (next() == 'u')
            return readCodedCharacter(string);
        constexpr std::string_view letters = "\"\\/bfnrt", meanings = "\"\\/\b\f\n\r\t";
        const auto index = position_ < text_.size() ? letters.find(next()) : letters.npos;
        if (index == letters.npos)
            return false;
        string += meanings[index];
        ++position_;
        return true;
    }

    /// From the "u" of an escape on: one character, which may be two escapes.
    bool readCodedCharacter(std::string& string)
    {
        const auto begin = position_;
        char32_t first = 0, second = 0;
        if (!readCodeUnit(first))
            return false;
        if (first >= 0xD800 && first <= 0xDBFF) {
            if (!take('\\') || !readCodeUnit(second))
                return false;
            if (second < 0xDC00 || second > 0xDFFF)
                return failAt(begin);
            appendUTF8(string, 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00));
            return true;
        }
        if (first >= 0xDC00 && first <= 0xDFFF)
            return failAt(begin);
        appendUTF8(string, first);
        return true;
    }

    bool readCodeUnit(char32_t& unit)
    {
        if (!take('u'))
            return false;
        for (int digit = 0; digit < 4; ++digit, ++position_) {
            const char c = next();
            const int value = c >= '0' && c <= '9' ? c - '0'
                : c >= 'a' && c <= 'f'             ? c - 'a' + 10
                : c >= 'A' && c <= 'F'             ? c - 'A' + 10
                                                   : -1;
            if (value < 0)
                return false;
            unit = unit << 4 | static_cast<char32_t>(value);
        }
        return true;
    }

    bool readNumber()
    {
        const auto begin = position_;
        while (position_ < text_.size() && isPartOfNumber(next()))
            ++position_;
        const auto run = text_.substr(begin, position_ - begin);
        if (!isNumber(run))
            return failAt(begin);
        form() = OrderedJSON::Number{std::string{run}};
        return true;
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isSign(char c) { return c == '+' || c == '-'; }
    static bool isPartOfNumber(char c) { return isDigit(c) || isSign(c) || c == '.' || c == 'e' || c == 'E'; }

    /// Decimal floating-point syntax: wider than JSON's, such as "+1", "01" and "5.".
    static bool isNumber(std::string_view run)
    {
        const auto skipSign = [&run] {
            if (!run.empty() && isSign(run[0]))
                run.remove_prefix(1);
        };
        const auto skipDigits = [&run] {
            const auto count = static_cast<std::size_t>(std::ranges::find_if_not(run, isDigit) - run.begin());
            run.remove_prefix(count);
            return count;
        };
        skipSign();
        auto digits = skipDigits();
        if (run.starts_with('.')) {
            run.remove_prefix(1);
            digits += skipDigits();
        }
        if (digits == 0)
            return false;
        if (run.empty())
            return true;
        if (run[0] != 'e' && run[0] != 'E')
            return false;
        run.remove_prefix(1);
        skipSign();
        return skipDigits() > 0 && run.empty();
    }

    /// The next byte; zero, which stands nowhere in JSON, at the end.
    char next() const { return position_ < text_.size() ? text_[position_] : '\0'; }

    bool take(char c)
    {
        if (position_ == text_.size() || text_[position_] != c)
            return false;
        ++position_;
        return true;
    }

    bool failAt(std::size_t position)
    {
        position_ = position;
        return false;
    }

    void skipWhitespace()
    {
        // Most of it is indentation.
        constexpr std::string_view indentation = "        ";
        while (text_.substr(position_).starts_with(indentation))
            position_ += indentation.size();
        const auto isWhitespace = [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; };
        while (position_ < text_.size() && isWhitespace(text_[position_]))
            ++position_;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t depth_ = 0;
    // The entries of the lists that are still open, the innermost last: each list is allocated once, in its final
    // size. The first is the document.
    OrderedJSON::Object entries_;
};

std::expected<OrderedJSON, OrderedJSON::ParseError> OrderedJSON::parse(std::string_view text)
{
    return OrderedJSONParser{text}.document();
}

} // namespace vespra
