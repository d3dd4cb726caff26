#pragma once

#include <concepts>
#include <cstddef>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vespra {

/// A JSON value that keeps what other parsers lose: the order of keys, duplicate keys and the spelling of numbers.
/// Only for editing the agents' settings files. Texts are UTF-8.
///
/// A value never changes: `setting` makes a new one that shares everything else with the old. Copying is cheap.
class OrderedJSON {
public:
    /// How deep objects and arrays may stand in each other. The printed form grows with the square of the depth, so a
    /// short text without this limit could ask for more memory than there is.
    static constexpr std::size_t deepestNesting = 1'000;

    struct Member;
    using Object = std::vector<Member>;
    using Array = std::vector<OrderedJSON>;
    /// The number as it was written, such as "1.50".
    struct Number {
        std::string text;
        bool operator==(const Number&) const = default;
    };
    struct Null {
        bool operator==(const Null&) const = default;
    };
    /// Where the text stops being JSON, in bytes from its beginning.
    struct ParseError {
        std::size_t offset = 0;
        static constexpr ParseError invalid(std::size_t offset) { return {offset}; }
        bool operator==(const ParseError&) const = default;
    };

    /// Fails with the offset of the first byte that is not allowed where it stands; for a malformed number, or an
    /// object or array nested too deeply, with the offset of its beginning.
    static std::expected<OrderedJSON, ParseError> parse(std::string_view text);

    OrderedJSON(Object members);
    OrderedJSON(Array elements);
    OrderedJSON(std::string text);
    OrderedJSON(std::string_view text);
    OrderedJSON(const char* text);
    /// `number.text` must read as a number.
    OrderedJSON(Number number);
    OrderedJSON(std::same_as<bool> auto value)
        : form_{bool{value}}
    {
    }
    OrderedJSON(Null = {})
        : form_{Null{}}
    {
    }

    /// Two spaces for each level, one entry a line, without a final line feed.
    std::string formatted() const;

    /// Of an object the value of the first member with `key`; null without one and for every other form. Lives as long
    /// as this value.
    const OrderedJSON* operator[](std::string_view key) const;
    /// For an object: replaces the first value under `key` in its place, or appends it; an absent `value` removes the
    /// first member with `key`. Every other form comes back unchanged.
    OrderedJSON setting(std::string_view key, std::optional<OrderedJSON> value) const;

    // Null for every other form.
    const Object* object() const;
    const Array* array() const;
    const std::string* stringValue() const { return std::get_if<std::string>(&form_); }

    /// Objects are compared in order, numbers by their spelling.
    bool operator==(const OrderedJSON& other) const;

private:
    template <class List> using Shared = std::shared_ptr<const List>;
    using Form = std::variant<Shared<Object>, Shared<Array>, std::string, Number, bool, Null>;

    friend class OrderedJSONParser;
    friend class OrderedJSONPrinter;

    Form form_;
};

struct OrderedJSON::Member {
    std::string key;
    OrderedJSON value;
    bool operator==(const Member&) const = default;
};

} // namespace vespra
