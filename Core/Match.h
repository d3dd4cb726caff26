#pragma once

#include <string_view>
#include <utility>
#include <variant>

namespace vespra {

template <class... Functions> struct Overload : Functions... {
    using Functions::operator()...;
};
// Apple's clang deduces no aggregate's arguments by itself.
template <class... Functions> Overload(Functions...) -> Overload<Functions...>;

/// Calls the function for the case that `variant` holds. A case without a function does not compile.
template <class Variant, class... Functions> constexpr decltype(auto) match(Variant&& variant, Functions&&... functions)
{
    return std::visit(Overload{std::forward<Functions>(functions)...}, std::forward<Variant>(variant));
}

/// Base of a case without payload: all values of one such case are equal.
struct Case {
    bool operator==(const Case&) const = default;
};

/// The name that the held case has in JSON and in logs. Each case states its own as `name`.
template <class Variant> constexpr std::string_view caseName(const Variant& variant)
{
    return std::visit([]<class Held>(const Held&) { return std::string_view{Held::name}; }, variant);
}

} // namespace vespra
