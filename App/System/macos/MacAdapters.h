#pragma once

#include "App/System/AppearanceMonitoring.h"
#include "App/System/DisplayControl.h"
#include "App/System/GlobalShortcut.h"
#include "App/System/LidMonitoring.h"
#include "App/System/LoginService.h"
#include "App/System/PowerAssertionBackend.h"
#include "App/System/SoundPlayer.h"
#include "App/System/SystemSleepObserving.h"
#include "App/System/Updater.h"
#include "App/System/UserNotificationCenter.h"
#include "Core/Energy/PowerSourceMonitoring.h"
#include "Core/Energy/ThermalMonitoring.h"
#include "Core/Scheduling/DeadlineScheduling.h"
#include "Core/Scheduling/MainLoop.h"

#include <memory>

namespace vespra {

/// One-shot dispatch timers against the wall clock, on the main queue.
std::unique_ptr<DeadlineScheduling> makeDispatchDeadlineScheduler();

std::unique_ptr<PowerSourceMonitoring> makeIOPSPowerSource();
std::unique_ptr<ThermalMonitoring> makeThermalStateMonitor();
std::unique_ptr<LidMonitoring> makeLidMonitor();
std::unique_ptr<SystemSleepObserving> makeSystemSleepObserver();
std::unique_ptr<PowerAssertionBackend> makeIOKitAssertions();
std::unique_ptr<DisplayControl> makeMacDisplay();
std::unique_ptr<UserNotificationCenter> makeMacNotificationCenter(MainLoop& mainLoop);
std::unique_ptr<SoundPlayer> makeMacSoundPlayer(MainLoop& mainLoop);
std::unique_ptr<LoginService> makeMacLoginService();
std::unique_ptr<GlobalShortcut> makeCarbonShortcut(MainLoop& mainLoop);
std::unique_ptr<AppearanceMonitoring> makeMacAppearance();
/// Null in an application without the updater's framework or the address of a feed.
std::unique_ptr<Updater> makeSparkleUpdater();

} // namespace vespra
