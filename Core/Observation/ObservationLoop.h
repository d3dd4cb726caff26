#pragma once

#include "Core/Lifetime.h"
#include "Core/Observation/ReadScope.h"
#include "Core/Scheduling/MainLoop.h"

#include <functional>
#include <memory>

namespace vespra {

/// Runs `apply` now, and again in a later turn of the main loop after anything that it read has changed, until it is
/// destroyed or stopped. Ten changes in one turn cost one run. Main thread only.
class ObservationLoop {
public:
    ObservationLoop(MainLoop& mainLoop, std::function<void()> apply);
    ObservationLoop(const ObservationLoop&) = delete;
    ObservationLoop& operator=(const ObservationLoop&) = delete;

    /// No run follows.
    void stop() { isActive_ = false; }

private:
    void track();

    MainLoop& mainLoop_;
    std::function<void()> apply_;
    std::shared_ptr<ReadScope::Listener> listener_;
    bool isActive_ = true;
    Lifetime lifetime_;
};

} // namespace vespra
