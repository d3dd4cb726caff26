#include "Core/Agents/HookInstaller.h"

#include <algorithm>

namespace vespra {

namespace {

    std::expected<OrderedJSON, HookInstaller::Failure> root(const std::optional<std::string>& text)
    {
        if (!text || isBlank(*text))
            return OrderedJSON::Object{};
        auto parsed = OrderedJSON::parse(*text);
        if (!parsed)
            return std::unexpected{HookInstaller::Failure::unreadable};
        if (!parsed->object())
            return std::unexpected{HookInstaller::Failure::unexpectedStructure};
        return *std::move(parsed);
    }

    std::string printed(const OrderedJSON& root, bool endsWithLineFeed)
    {
        auto text = root.formatted();
        if (endsWithLineFeed)
            text += '\n';
        return text;
    }

} // namespace

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\n\v\f\r") == text.npos; }

std::expected<std::string, HookInstaller::Failure> HookInstaller::installing(
    const std::optional<std::string>& text) const
{
    const auto settings = root(text);
    if (!settings)
        return std::unexpected{settings.error()};
    const auto* present = (*settings)["hooks"];
    const auto hooks = withHooks(present ? *present : OrderedJSON::Object{});
    if (!hooks)
        return std::unexpected{hooks.error()};
    return printed(settings->setting("hooks", *hooks), !text || text->ends_with('\n'));
}

/// `hooks` with our group under each event.
std::expected<OrderedJSON, HookInstaller::Failure> HookInstaller::withHooks(const OrderedJSON& hooks) const
{
    if (!hooks.object())
        return std::unexpected{Failure::unexpectedStructure};
    auto result = hooks;
    for (const auto& event : events) {
        const auto* present = result[event];
        if (present && !present->array())
            return std::unexpected{Failure::unexpectedStructure};
        if (present && containsOurs(*present))
            continue;
        auto groups = present ? *present->array() : OrderedJSON::Array{};
        groups.push_back(group());
        result = result.setting(event, std::move(groups));
    }
    return result;
}

std::expected<std::string, HookInstaller::Failure> HookInstaller::uninstalling(const std::string& text) const
{
    const auto settings = root(text);
    if (!settings)
        return std::unexpected{settings.error()};
    const auto* present = (*settings)["hooks"];
    if (!present || !present->object())
        return text;
    const auto hooks = withoutOurs(*present->object());
    return printed(settings->setting("hooks", hooks.object()->empty() ? std::nullopt : std::optional{hooks}),
        text.ends_with('\n'));
}

/// Goes through the members, not the keys: if a key occurs twice, both members hold hooks.
OrderedJSON HookInstaller::withoutOurs(const OrderedJSON::Object& hooks) const
{
    OrderedJSON::Object kept;
    for (const auto& member : hooks) {
        const auto* groups = member.value.array();
        auto reduced = groups ? withoutOurs(*groups) : OrderedJSON::Array{};
        if (!groups || reduced == *groups)
            kept.push_back(member);
        else if (!reduced.empty())
            kept.emplace_back(member.key, std::move(reduced));
    }
    return kept;
}

OrderedJSON::Array HookInstaller::withoutOurs(const OrderedJSON::Array& groups) const
{
    OrderedJSON::Array kept;
    for (const auto& element : groups)
        if (auto reduced = withoutOurs(element))
            kept.push_back(*std::move(reduced));
    return kept;
}

/// Absent if no hook remains in the group. Anything that is not a group stays as it is.
std::optional<OrderedJSON> HookInstaller::withoutOurs(const OrderedJSON& group) const
{
    const auto* present = group["hooks"];
    const auto* hooks = present ? present->array() : nullptr;
    if (!hooks)
        return group;
    auto kept = *hooks;
    std::erase_if(kept, [this](const OrderedJSON& hook) { return isOurs(hook); });
    if (kept.empty())
        return {};
    return kept.size() == hooks->size() ? group : group.setting("hooks", std::move(kept));
}

HookInstaller::State HookInstaller::state(const std::optional<std::string>& text) const
{
    const auto settings = root(text);
    const auto* hooks = settings ? (*settings)["hooks"] : nullptr;
    const auto installed = std::ranges::count_if(events, [&](const std::string& event) {
        const auto* groups = hooks ? (*hooks)[event] : nullptr;
        return groups && containsOurs(*groups);
    });
    if (installed == 0)
        return State::notInstalled;
    return static_cast<std::size_t>(installed) == events.size() ? State::installed : State::partial;
}

bool HookInstaller::holdsOurs(const std::string& text) const
{
    const auto settings = root(text);
    const auto* present = settings ? (*settings)["hooks"] : nullptr;
    const auto* hooks = present ? present->object() : nullptr;
    return hooks && std::ranges::any_of(*hooks, [this](const auto& member) { return containsOurs(member.value); });
}

std::string HookInstaller::preview() const
{
    OrderedJSON::Object hooks;
    for (const auto& event : events)
        hooks.emplace_back(event, OrderedJSON::Array{group()});
    return OrderedJSON{OrderedJSON::Object{{"hooks", std::move(hooks)}}}.formatted();
}

OrderedJSON HookInstaller::group() const
{
    OrderedJSON hook = OrderedJSON::Object{
        {"type", "command"}, {"command", command}, {"timeout", OrderedJSON::Number{std::to_string(timeout)}}};
    return OrderedJSON::Object{{"hooks", OrderedJSON::Array{std::move(hook)}}};
}

bool HookInstaller::isOurs(const OrderedJSON& hook) const
{
    const auto* held = hook["command"];
    const auto* line = held ? held->stringValue() : nullptr;
    return line && line->contains(marker);
}

bool HookInstaller::containsOurs(const OrderedJSON& groups) const
{
    const auto* elements = groups.array();
    return elements && std::ranges::any_of(*elements, [this](const OrderedJSON& element) {
        const auto* present = element["hooks"];
        const auto* hooks = present ? present->array() : nullptr;
        return hooks && std::ranges::any_of(*hooks, [this](const OrderedJSON& hook) { return isOurs(hook); });
    });
}

} // namespace vespra
