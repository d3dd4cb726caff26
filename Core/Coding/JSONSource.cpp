#include "Core/Coding/JSONSource.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace vespra {

namespace {

    std::string below(const std::string& place, std::string_view key)
    {
        return place.empty() ? std::string{key} : place + "." + std::string{key};
    }

} // namespace

std::string DecodingError::description() const { return place.empty() ? problem : place + ": " + problem; }

void JSONSource::fail(std::string problem) const { throw DecodingError{place_, std::move(problem)}; }

void JSONSource::requireObject() const
{
    if (!value_->is_object())
        fail("expected an object");
}

JSONSource JSONSource::required(std::string_view key) const
{
    requireObject();
    const auto found = value_->find(key);
    if (found == value_->end())
        throw DecodingError{below(place_, key), "is missing"};
    return JSONSource{*found, below(place_, key)};
}

std::optional<JSONSource> JSONSource::optional(std::string_view key) const
{
    requireObject();
    const auto found = value_->find(key);
    if (found == value_->end() || found->is_null())
        return {};
    return JSONSource{*found, below(place_, key)};
}

bool JSONSource::has(std::string_view key) const { return value_->is_object() && value_->contains(key); }

std::size_t JSONSource::size() const
{
    if (!value_->is_array())
        fail("expected a list");
    return value_->size();
}

JSONSource JSONSource::at(std::size_t index) const
{
    return JSONSource{(*value_)[index], place_ + "[" + std::to_string(index) + "]"};
}

bool JSONSource::boolean() const
{
    if (!value_->is_boolean())
        fail("expected true or false");
    return value_->get<bool>();
}

double JSONSource::number() const
{
    if (!value_->is_number())
        fail("expected a number");
    return value_->get<double>();
}

std::int64_t JSONSource::integer() const
{
    constexpr double outOfRange = 9223372036854775808.0; // 2^63
    if (value_->is_number_unsigned() && value_->get<std::uint64_t>() > INT64_MAX)
        fail("expected a whole number of 64 bits");
    if (value_->is_number_integer())
        return value_->get<std::int64_t>();
    if (!value_->is_number_float())
        fail("expected a whole number");
    const double number = value_->get<double>();
    if (number != std::trunc(number) || number < -outOfRange || number >= outOfRange)
        fail("expected a whole number");
    return static_cast<std::int64_t>(number);
}

std::string JSONSource::string() const
{
    if (!value_->is_string())
        fail("expected a text");
    return value_->get<std::string>();
}

JSON numberJSON(double number)
{
    constexpr double largestExact = 1e15;
    if (std::abs(number) < largestExact && number == std::trunc(number))
        return static_cast<std::int64_t>(number);
    return number;
}

JSON numberJSON(Seconds length) { return numberJSON(length.count()); }

std::optional<JSON> parsedJSON(std::string_view text)
{
    auto value = JSON::parse(text, nullptr, /*allow_exceptions=*/false);
    if (value.is_discarded())
        return {};
    return value;
}

} // namespace vespra
