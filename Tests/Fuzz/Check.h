#pragma once

#include <cstdlib>

namespace vespra {

/// Ends the program where a promise is broken, which is how a fuzz target reports an input.
inline void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace vespra
