#pragma once

// Core/Observation: values that remember who has read them, and loops that run again when one has changed.

#include "Core/Observation/ReadScope.h"

#include <concepts>
#include <utility>

namespace vespra {

/// A value that remembers who read it inside a `ReadScope`. Main thread only.
template <std::equality_comparable Value> class Observed {
public:
    Observed() = default;
    explicit Observed(Value value)
        : value_{std::move(value)}
    {
    }

    const Value& get() const
    {
        readers_.add(ReadScope::current());
        return value_;
    }

    /// Tells the scopes that have read it, unless `next` equals the value there is.
    void set(Value next)
    {
        if (next == value_)
            return;
        value_ = std::move(next);
        readers_.tellAndForget();
    }

    /// Changes the value in place, for values that are dear to copy, and tells the scopes in any case. Returns what
    /// `change` returns.
    template <class Change> decltype(auto) modify(Change change)
    {
        struct Tell {
            Readers& readers;
            ~Tell() { readers.tellAndForget(); }
        } tell{readers_};
        return change(value_);
    }

private:
    Value value_{};
    mutable Readers readers_;
};

} // namespace vespra
