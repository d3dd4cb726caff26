#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "App/System/Reading.h"
#include "Core/Scheduling/MainThread.h"

namespace vespra {

namespace {

    ThermalLevel read() { return thermalLevelFromSystem([[NSProcessInfo processInfo] thermalState]); }

    class ThermalStateMonitor final : public ThermalMonitoring {
    public:
        ThermalStateMonitor()
            : reading_{read()}
            , observer_{[NSNotificationCenter defaultCenter], NSProcessInfoThermalStateDidChangeNotification, [this] {
                            mainThread::check();
                            reading_.update(read(), onChange);
                        }}
        {
        }
        ThermalLevel level() const override { return reading_.value(); }

    private:
        Reading<ThermalLevel> reading_;
        NotificationObserver observer_;
    };

} // namespace

std::unique_ptr<ThermalMonitoring> makeThermalStateMonitor() { return std::make_unique<ThermalStateMonitor>(); }

} // namespace vespra
