#pragma once

#include "Core/Coding/JSON.h"
#include "Core/RawValue.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace vespra {

/// Where a JSON document differs from what was expected.
struct DecodingError {
    /// Such as "steps[3].at"; empty for the document itself.
    std::string place;
    /// Such as "expected a number".
    std::string problem;

    /// "steps[3].at: expected a number".
    std::string description() const;
};

/// A JSON value together with the place where it stands. Its reading operations throw `DecodingError`, which never
/// leaves the decoding: a decoder's public face is `decoded`.
class JSONSource {
public:
    explicit JSONSource(const JSON& value, std::string place = {})
        : value_{&value}
        , place_{std::move(place)}
    {
    }

    const JSON& value() const { return *value_; }
    const std::string& place() const { return place_; }
    [[noreturn]] void fail(std::string problem) const;

    void requireObject() const;
    /// Of an object: the value under `key`.
    JSONSource required(std::string_view key) const;
    /// Of an object: nothing when the key is absent or holds null.
    std::optional<JSONSource> optional(std::string_view key) const;
    /// Of an object: whether the key stands in it, also with null.
    bool has(std::string_view key) const;
    /// Of an array.
    std::size_t size() const;
    JSONSource at(std::size_t index) const;

    bool boolean() const;
    double number() const;
    /// A number without fraction within 64 bits; 20.0 counts as 20.
    std::int64_t integer() const;
    std::string string() const;

    template <class Enum> Enum rawValue() const
    {
        if (const auto known = fromRawValue<Enum>(string()))
            return *known;
        std::string expected = "expected one of";
        for (const auto& [_, raw] : rawValues<Enum>)
            expected += " \"" + std::string{raw} + '"';
        fail(expected);
    }

private:
    const JSON* value_;
    std::string place_;
};

/// Runs `read` on `source`; what it throws comes back as a value.
template <class Read>
auto decoded(const JSONSource& source, Read read)
    -> std::expected<std::invoke_result_t<Read, const JSONSource&>, DecodingError>
{
    try {
        return read(source);
    } catch (const DecodingError& error) {
        return std::unexpected{error};
    }
}

/// Absent if `text` is not one JSON value.
std::optional<JSON> parsedJSON(std::string_view text);

} // namespace vespra
