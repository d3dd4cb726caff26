#pragma once

#include <functional>

namespace vespra {

/// The main thread's queue of turns.
class MainLoop {
public:
    virtual ~MainLoop() = default;
    /// Runs `task` on the main thread in a later turn, in the order of posting. Any thread.
    virtual void post(std::function<void()> task) = 0;
};

} // namespace vespra
