#include "Core/Observation/ObservationLoop.h"

namespace vespra {

ObservationLoop::ObservationLoop(MainLoop& mainLoop, std::function<void()> apply)
    : mainLoop_{mainLoop}
    , apply_{std::move(apply)}
{
    track();
}

void ObservationLoop::track()
{
    if (!isActive_)
        return;
    auto trackAgain = lifetime_.guard([this] { track(); });
    listener_ = std::make_shared<ReadScope::Listener>();
    listener_->onChange = [&mainLoop = mainLoop_, trackAgain] { mainLoop.post(trackAgain); };
    const ReadScope scope{listener_};
    apply_();
}

} // namespace vespra
