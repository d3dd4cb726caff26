#include "Core/Observation/ReadScope.h"

#include "Core/Lifetime.h"

#include <algorithm>

namespace vespra {

namespace {

    std::shared_ptr<ReadScope::Listener>& openScope()
    {
        static std::shared_ptr<ReadScope::Listener> listener;
        return listener;
    }

} // namespace

ReadScope::ReadScope(const std::shared_ptr<Listener>& listener)
    : outer_{std::exchange(openScope(), listener)}
{
}

ReadScope::~ReadScope() { openScope() = std::move(outer_); }

std::shared_ptr<ReadScope::Listener> ReadScope::current() { return openScope(); }

void Readers::add(const std::shared_ptr<ReadScope::Listener>& listener)
{
    if (!listener)
        return;
    std::erase_if(listeners_, [](const auto& weak) { return weak.expired(); });
    const auto isListener = [&](const auto& weak) { return weak.lock() == listener; };
    if (std::ranges::none_of(listeners_, isListener))
        listeners_.push_back(listener);
}

void Readers::tellAndForget()
{
    for (const auto& weak : std::exchange(listeners_, {}))
        if (const auto listener = weak.lock())
            notify(std::exchange(listener->onChange, {}));
}

} // namespace vespra
