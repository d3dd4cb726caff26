#include "App/System/simulated/SimulatedUpdater.h"

namespace vespra {

SimulatedUpdater::SimulatedUpdater(const std::shared_ptr<SimulatedMachine>& machine, const WallClock& clock)
    : clock_{clock}
{
    machine->onUpdate = lifetime_.guard([this](const std::string& version) {
        newest_ = version;
        if (checks_)
            check(false);
    });
}

void SimulatedUpdater::checkForUpdates() { check(true); }

void SimulatedUpdater::check(bool isAskedFor)
{
    lastCheck_ = clock_.now();
    if (newest_.empty()) {
        setState(isAskedFor ? UpdateState{update::UpToDate{}} : UpdateState{});
    } else {
        setState(update::Available{.version = newest_, .notes = {}});
        notify(onWillShowUpdate, newest_, isAskedFor);
        if (isAskedFor)
            notify(onUpdateSeen);
    }
    notify(onCycleFinished);
}

} // namespace vespra
