#pragma once

// App/System: one header for each facility of the system, its adapters in linux/, macos/ and simulated/, and the
// controllers that use them. Platform is all of them together.

#include "App/System/AppearanceMonitoring.h"
#include "App/System/DisplayControl.h"
#include "App/System/GlobalShortcut.h"
#include "App/System/HelperConnection.h"
#include "App/System/HelperService.h"
#include "App/System/LidMonitoring.h"
#include "App/System/LoginService.h"
#include "App/System/MachineFacts.h"
#include "App/System/PowerAssertionBackend.h"
#include "App/System/SessionFollowing.h"
#include "App/System/SoundPlayer.h"
#include "App/System/SystemPower.h"
#include "App/System/SystemSleepObserving.h"
#include "App/System/Updater.h"
#include "App/System/UserNotificationCenter.h"
#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Energy/ThermalMonitoring.h"
#include "Core/RawValue.h"
#include "Core/Scheduling/DeadlineScheduling.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Scheduling/WallClock.h"

#include <expected>
#include <memory>
#include <optional>
#include <string>

namespace vespra {

class MachineSocket;
class SimulatedMachine;

enum class PlatformKind { linux, macos, simulated };

template <>
inline constexpr auto rawValues<PlatformKind> = RawValueTable<PlatformKind, 3>{{
    {PlatformKind::linux, "linux"},
    {PlatformKind::macos, "macos"},
    {PlatformKind::simulated, "simulated"},
}};

/// The main loop, the clock and the timers of the system that the program runs on.
struct PlatformTime {
    std::unique_ptr<MainLoop> mainLoop;
    std::unique_ptr<WallClock> clock;
    std::unique_ptr<DeadlineScheduling> deadlines;
    std::unique_ptr<TaskScheduling> tasks;
};

/// The privileged component, and what closed-lid mode needs besides.
struct PlatformHelper {
    std::shared_ptr<HelperService> service;
    HelperConnector connect;
    std::shared_ptr<MachineFacts> facts;
    std::shared_ptr<SystemPower> power;
};

/// All that the application needs of its system; every member is set, except `updater`, `machine` and `machineSocket`.
/// Main thread only, but for `time.mainLoop->post`. Members that come later use those before them.
struct Platform {
    PlatformKind kind = PlatformKind::simulated;
    /// Why the laptop is a simulated one though nobody asked for it: a sentence for the user. Empty otherwise.
    std::string notice;

    PlatformTime time;
    /// The laptop in memory, of the simulated platform only.
    std::shared_ptr<SimulatedMachine> machine;
    std::unique_ptr<PowerSourceMonitoring> power;
    std::unique_ptr<ThermalMonitoring> thermal;
    std::unique_ptr<LidMonitoring> lid;
    std::unique_ptr<SystemSleepObserving> sleep;
    std::unique_ptr<PowerAssertionBackend> assertions;
    std::unique_ptr<DisplayControl> display;
    std::unique_ptr<SessionFollowing> session;
    std::unique_ptr<UserNotificationCenter> notifications;
    /// Of the heat alarm.
    std::unique_ptr<SoundPlayer> alarm;
    std::unique_ptr<LoginService> login;
    std::unique_ptr<GlobalShortcut> shortcut;
    std::unique_ptr<AppearanceMonitoring> appearance;
    /// Null where new versions come by other means, such as the system's packages.
    std::unique_ptr<Updater> updater;
    PlatformHelper helper;
    /// Steers `machine` from outside.
    std::shared_ptr<MachineSocket> machineSocket;
};

/// Builds the platform; a QCoreApplication must exist, and must outlive it. Without a `kind` it is the system's own
/// where a power manager answers, else a simulated laptop with a `notice`. Fails with a sentence if this build or this
/// machine does not have the `kind`. Waits for other processes at most about two seconds.
std::expected<Platform, std::string> makePlatform(std::optional<PlatformKind> kind = {});

} // namespace vespra
