#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace vespra {

/// Lets callbacks hold their owner weakly: a callback made by `guard` does nothing once the owner is gone.
/// Declare it as the owner's last member, so that it ends first. Main thread only.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    template <class Function> auto guard(Function function) const
    {
        return [alive = std::weak_ptr<const char>{token_}, function = std::move(function)](auto&&... arguments) {
            if (!alive.expired())
                function(std::forward<decltype(arguments)>(arguments)...);
        };
    }

private:
    std::shared_ptr<const char> token_ = std::make_shared<const char>();
};

/// Calls `callback` if there is one. Works on a copy: a callback may be replaced or cleared while it runs.
template <class... Arguments, class... Given>
void notify(const std::function<void(Arguments...)>& callback, Given&&... arguments)
{
    if (const auto copy = callback)
        copy(std::forward<Given>(arguments)...);
}

} // namespace vespra
