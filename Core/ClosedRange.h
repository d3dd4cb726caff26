#pragma once

#include <algorithm>

namespace vespra {

/// All values from `lowest` to `highest`, both included.
template <class Value> struct ClosedRange {
    Value lowest;
    Value highest;

    constexpr Value clamped(Value value) const { return std::clamp(value, lowest, highest); }
};

} // namespace vespra
