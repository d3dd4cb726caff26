#pragma once

#include "Core/Lifetime.h"

#include <utility>

namespace vespra {

/// The delivery rule of every monitor: the first reading is taken at construction and told to no one, later ones only
/// if they differ from the last.
template <class Value> class Reading {
public:
    explicit Reading(Value first)
        : value_{std::move(first)}
    {
    }

    const Value& value() const { return value_; }

    void update(const Value& next, const std::function<void(Value)>& onChange)
    {
        if (next == value_)
            return;
        value_ = next;
        notify(onChange, next);
    }

private:
    Value value_;
};

} // namespace vespra
