#include "Core/Agents/JSONPlainText.h"
#include "Core/Agents/OrderedJSON.h"
#include "Core/Match.h"

#include <cstring>

namespace vespra {

namespace {

    constexpr std::string_view indentation = "  ";

    /// The size of the printed value, but for what escapes add. Growing the text step by step instead takes longer than
    /// the printing itself.
    std::size_t leastSize(const OrderedJSON& value, std::size_t indent)
    {
        constexpr std::size_t quotes = 2, brackets = 2, word = 5, colon = 2, commaAndLineFeed = 2;
        if (const auto* string = value.stringValue())
            return string->size() + quotes;
        std::size_t size = brackets + word + indent;
        const auto line = indent + indentation.size() + commaAndLineFeed;
        if (const auto* members = value.object())
            for (const auto& [key, held] : *members)
                size += line + key.size() + quotes + colon + leastSize(held, indent + indentation.size());
        else if (const auto* elements = value.array())
            for (const auto& element : *elements)
                size += line + leastSize(element, indent + indentation.size());
        return size;
    }

} // namespace

class OrderedJSONPrinter {
public:
    explicit OrderedJSONPrinter(std::size_t expectedSize) { makeRoom(expectedSize); }

    std::string take() &&
    {
        text_.resize(used_);
        return std::move(text_);
    }

    void print(const OrderedJSON& value)
    {
        if (const auto* string = value.stringValue())
            printString(*string);
        else if (const auto* members = value.object())
            printList('{', *members, '}', [this](const OrderedJSON::Member& member) {
                printString(member.key);
                add(": ");
                print(member.value);
            });
        else if (const auto* elements = value.array())
            printList('[', *elements, ']', [this](const OrderedJSON& element) { print(element); });
        else
            printWord(value);
    }

private:
    void printWord(const OrderedJSON& value)
    {
        if (const auto* number = std::get_if<OrderedJSON::Number>(&value.form_))
            add(number->text);
        else if (const auto* truth = std::get_if<bool>(&value.form_))
            add(*truth ? "true" : "false");
        else
            add("null");
    }

    void printList(char opening, const auto& entries, char closing, auto printEntry)
    {
        add(opening);
        if (!entries.empty()) {
            nextLine_ += indentation;
            for (const auto& entry : entries) {
                if (&entry != entries.data())
                    add(',');
                add(nextLine_);
                printEntry(entry);
            }
            nextLine_.resize(nextLine_.size() - indentation.size());
            add(nextLine_);
        }
        add(closing);
    }

    void printString(std::string_view string)
    {
        add('"');
        while (true) {
            const auto length = plainLength(string);
            add(string.substr(0, length));
            if (length == string.size())
                break;
            printOther(string[length]);
            string.remove_prefix(length + 1);
        }
        add('"');
    }

    /// A byte that is not plain.
    void printOther(char c)
    {
        constexpr std::string_view meanings = "\"\\\b\f\n\r\t", letters = "\"\\bfnrt";
        constexpr std::string_view hexadecimal = "0123456789abcdef";
        if (const auto index = meanings.find(c); index != meanings.npos) {
            add('\\');
            add(letters[index]);
        } else if (const auto byte = static_cast<unsigned char>(c); byte < 0x20) {
            add("\\u00");
            add(hexadecimal[byte >> 4]);
            add(hexadecimal[byte & 0xF]);
        } else {
            add(c);
        }
    }

    // Most pieces are a few bytes long: appending them to a std::string one by one takes twice the time.
    void add(std::string_view piece)
    {
        makeRoom(piece.size());
        std::memcpy(text_.data() + used_, piece.data(), piece.size());
        used_ += piece.size();
    }
    void add(char c)
    {
        makeRoom(1);
        text_[used_++] = c;
    }
    void makeRoom(std::size_t size)
    {
        if (text_.size() - used_ < size) [[unlikely]]
            grow(size);
    }
    void grow(std::size_t size)
    {
        text_.resize_and_overwrite(text_.size() + text_.size() / 2 + size, [](char*, std::size_t all) { return all; });
    }

    std::string text_;
    std::size_t used_ = 0;
    /// A line feed and the indentation of the current level.
    std::string nextLine_ = "\n";
};

std::string OrderedJSON::formatted() const
{
    OrderedJSONPrinter printer{leastSize(*this, 0)};
    printer.print(*this);
    return std::move(printer).take();
}

} // namespace vespra
