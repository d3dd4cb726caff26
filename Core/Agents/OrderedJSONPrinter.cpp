#include "Core/Agents/JSONPlainText.h"
#include "Core/Agents/OrderedJSON.h"
#include "Core/Match.h"

#include <cstring>

namespace vespra {

class OrderedJSONPrinter {
public:
    std::string take() &&
    {
        text_.resize(used_);
        return std::move(text_);
    }

    void print(const OrderedJSON& value)
    {
        match(
            value.form_,
            [this](const OrderedJSON::Shared<OrderedJSON::Object>& members) {
                printList('{', *members, '}', [this](const OrderedJSON::Member& member) {
                    printString(member.key);
                    add(": ");
                    print(member.value);
                });
            },
            [this](const OrderedJSON::Shared<OrderedJSON::Array>& elements) {
                printList('[', *elements, ']', [this](const OrderedJSON& element) { print(element); });
            },
            [this](const std::string& text) { printString(text); },
            [this](const OrderedJSON::Number& number) { add(number.text); },
            [this](bool truth) { add(truth ? "true" : "false"); },
            [this](OrderedJSON::Null) { add("null"); });
    }

private:
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
    /// In large steps: memory that is never written to costs nothing, but every step copies everything.
    void grow(std::size_t size)
    {
        constexpr std::size_t first = 4096, factor = 4;
        text_.resize_and_overwrite(factor * text_.size() + size + first, [](char*, std::size_t all) { return all; });
    }

    static constexpr std::string_view indentation = "  ";

    std::string text_;
    std::size_t used_ = 0;
    /// A line feed and the indentation of the current level.
    std::string nextLine_ = "\n";
};

std::string OrderedJSON::formatted() const
{
    OrderedJSONPrinter printer;
    printer.print(*this);
    return std::move(printer).take();
}

} // namespace vespra
