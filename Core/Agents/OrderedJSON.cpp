#include "Core/Agents/OrderedJSON.h"

#include <algorithm>

namespace vespra {

OrderedJSON::OrderedJSON(Object members)
    : form_{std::make_shared<const Object>(std::move(members))}
{
}

OrderedJSON::OrderedJSON(Array elements)
    : form_{std::make_shared<const Array>(std::move(elements))}
{
}

OrderedJSON::OrderedJSON(std::string text)
    : form_{std::move(text)}
{
}

OrderedJSON::OrderedJSON(std::string_view text)
    : form_{std::string{text}}
{
}

OrderedJSON::OrderedJSON(const char* text)
    : form_{std::string{text}}
{
}

OrderedJSON::OrderedJSON(Number number)
    : form_{std::move(number)}
{
}

const OrderedJSON::Object* OrderedJSON::object() const
{
    const auto* members = std::get_if<Shared<Object>>(&form_);
    return members ? members->get() : nullptr;
}

const OrderedJSON::Array* OrderedJSON::array() const
{
    const auto* elements = std::get_if<Shared<Array>>(&form_);
    return elements ? elements->get() : nullptr;
}

const OrderedJSON* OrderedJSON::operator[](std::string_view key) const
{
    const auto* members = object();
    if (!members)
        return nullptr;
    const auto found = std::ranges::find(*members, key, &Member::key);
    return found == members->end() ? nullptr : &found->value;
}

OrderedJSON OrderedJSON::setting(std::string_view key, std::optional<OrderedJSON> value) const
{
    const auto* members = object();
    if (!members)
        return *this;
    auto changed = *members;
    const auto found = std::ranges::find(changed, key, &Member::key);
    if (found == changed.end() && value)
        changed.push_back({std::string{key}, *std::move(value)});
    else if (found != changed.end() && value)
        found->value = *std::move(value);
    else if (found != changed.end())
        changed.erase(found);
    return changed;
}

bool OrderedJSON::operator==(const OrderedJSON& other) const
{
    if (const auto *mine = object(), *others = other.object(); mine && others)
        return mine == others || *mine == *others;
    if (const auto *mine = array(), *others = other.array(); mine && others)
        return mine == others || *mine == *others;
    return form_ == other.form_;
}

} // namespace vespra
