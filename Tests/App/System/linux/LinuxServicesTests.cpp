#include "App/System/linux/BusProbe.h"
#include "App/System/linux/LinuxLid.h"
#include "App/System/linux/LinuxPowerSource.h"
#include "App/System/linux/LogindSleep.h"
#include "App/System/linux/PortalAppearance.h"
#include "App/System/linux/SessionInhibitor.h"
#include "App/System/linux/TimerfdScheduler.h"
#include "App/System/QtMainLoop.h"
#include "Core/Observation/ObservationLoop.h"
#include "Core/Scheduling/VirtualTime.h"
#include "HelperProtocol/UnixSocket.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/QtApplication.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sys/socket.h>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;

    constexpr auto logindName = "org.freedesktop.login1", upowerName = "org.freedesktop.UPower";
    constexpr auto gnome = "org.gnome.SessionManager", xfce = "org.freedesktop.PowerManagement";
    constexpr auto manager = "org.freedesktop.login1.Manager", device = "org.freedesktop.UPower.Device";
    constexpr auto logindPath = "/org/freedesktop/login1", upowerPath = "/org/freedesktop/UPower";
    constexpr auto devicePath = "/org/freedesktop/UPower/devices/DisplayDevice";

    class LinuxServices : public BusTest {
    protected:
        std::unique_ptr<LogindLock> lock(const char* what, const char* mode)
        {
            return std::make_unique<LogindLock>("Vespra", what, mode, time, SystemLog{"app", "test"});
        }

        std::vector<std::string> held()
        {
            settle();
            return bus().held();
        }
        void waitUntilHeld(const std::vector<std::string>& expected)
        {
            QtApplication::runUntil([&] { return held() == expected; });
        }

        void setBattery(bool onBattery, double percentage)
        {
            bus().setProperty(upowerPath, upowerName, "OnBattery", onBattery);
            bus().setProperty(devicePath, device, "Type", 2U);
            bus().setProperty(devicePath, device, "IsPresent", true);
            bus().setProperty(devicePath, device, "Percentage", percentage);
        }

        /// One that asks GNOME alone.
        std::unique_ptr<SessionInhibitor> gnomeInhibitor()
        {
            return std::make_unique<SessionInhibitor>(
                "Vespra", std::vector{InhibitService::sessionManager(4)}, nullptr, time, SystemLog{"app", "test"});
        }
        struct Inhibited {
            const char* service;
            std::unique_ptr<Inhibition> inhibition;
            std::string name;
        };
        std::vector<Inhibited> inhibitions()
        {
            std::vector<Inhibited> all;
            all.emplace_back(logindName, lock("idle", "block"), "idle:block");
            all.emplace_back(gnome, gnomeInhibitor(), "org.gnome.SessionManager 4");
            return all;
        }

        VirtualTime time;
    };

} // namespace

TEST_F(LinuxServices, WhatKeepsTheMachineAwakeIsHeldExactlyWhileWantedAndAcrossRestarts)
{
    for (const auto& [service, inhibition, name] : inhibitions()) {
        SCOPED_TRACE(name);
        bus().reset();
        inhibition->hold("why");
        EXPECT_THAT(held(), IsEmpty()) << "no service yet";
        bus().own(service);
        waitUntilHeld({name});
        inhibition->hold("why");
        EXPECT_THAT(held(), ElementsAre(name));
        bus().restart(service);
        waitUntilHeld({name});
        EXPECT_EQ(bus().mostHeld(), 1U);
        inhibition->drop();
        waitUntilHeld({});
        bus().restart(service);
        EXPECT_THAT(held(), IsEmpty());
    }
}

TEST_F(LinuxServices, WhatIsGrantedLateIsGivenBackOrKeptButNeverDoubled)
{
    for (const auto& [service, inhibition, name] : inhibitions()) {
        SCOPED_TRACE(name);
        bus().reset();
        bus().own(service);
        settle();
        bus().keepBack("Inhibit");
        inhibition->hold("why");
        settle();
        inhibition->drop();
        bus().answer();
        waitUntilHeld({});
        EXPECT_EQ(bus().mostHeld(), 1U) << "it had been granted";

        bus().keepBack("Inhibit");
        inhibition->hold("why");
        inhibition->drop();
        inhibition->hold("why");
        settle();
        bus().answer();
        waitUntilHeld({name});
        EXPECT_EQ(bus().mostHeld(), 1U);
    }
}

TEST_F(LinuxServices, WhatIsRefusedIsLoggedOnceAndAskedForAgainEveryHalfMinute)
{
    bus().keepBack("Inhibit");
    const auto both = inhibitions();
    for (const auto& each : both) {
        bus().own(each.service);
        each.inhibition->hold("why");
    }
    settle();
    bus().refuse();
    settle();
    bus().keepBack("Inhibit");
    time.advance(30s);
    settle();
    bus().refuse();
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_EQ(log.messages.size(), 2U) << "one each";
    time.advance(30s);
    waitUntilHeld({both[0].name, both[1].name});
    EXPECT_EQ(time.pendingTasks(), 0U);
}

TEST_F(LinuxServices, SessionInhibitorHoldsTheBestServiceThatIsThere)
{
    bus().own(logindName);
    SessionInhibitor inhibitor{"Vespra",
        {InhibitService::sessionManager(4), InhibitService::powerManagement()},
        lock("idle", "block"), // where there is none
        time,
        SystemLog{"app", "test"}};
    inhibitor.hold("why");
    waitUntilHeld({"idle:block"});
    bus().own(xfce);
    waitUntilHeld({"org.freedesktop.PowerManagement.Inhibit"});
    bus().own(gnome);
    waitUntilHeld({"org.gnome.SessionManager 4"});
    bus().disown(gnome);
    waitUntilHeld({"org.freedesktop.PowerManagement.Inhibit"});
    inhibitor.drop();
    waitUntilHeld({});
    EXPECT_EQ(bus().mostHeld(), 1U);
}

TEST_F(LinuxServices, SessionInhibitorGivesBackTheCookieOfAServiceThatIsGone)
{
    bus().own(gnome);
    const auto inhibitor = gnomeInhibitor();
    bus().keepBack("Inhibit");
    inhibitor->hold("why");
    settle();
    bus().disown(gnome);
    settle();
    bus().answer(); // by a process that has lost the name
    waitUntilHeld({});

    bus().keepBack("Inhibit");
    bus().own(gnome);
    for (int restart = 0; restart < 3; ++restart) {
        settle();
        bus().restart(gnome);
    }
    settle();
    bus().answer(); // all of them at once
    waitUntilHeld({"org.gnome.SessionManager 4"});
}

TEST_F(LinuxServices, PowerFollowsUPowerAndTheKernelInItsPlace)
{
    const TemporaryDirectory sysfs;
    const auto write = [&](const char* name, const char* text) {
        std::filesystem::create_directories((sysfs / name).parent_path());
        std::ofstream{sysfs / name} << text;
    };
    write("class/power_supply/BAT0/type", "Battery");
    write("class/power_supply/BAT0/status", "Discharging");
    write("class/power_supply/BAT0/capacity", "41");
    setBattery(false, 57.4);
    bus().own(upowerName);

    LinuxPowerSource power{std::make_shared<UPower>(), time, sysfs.path()};
    EXPECT_EQ(power.snapshot(), charger(57)) << "known from the start";
    std::vector<PowerSnapshot> told;
    power.onChange = [&](PowerSnapshot reading) { told.push_back(reading); };
    const auto waitFor
        = [&](PowerSnapshot expected) { QtApplication::runUntil([&] { return power.snapshot() == expected; }); };

    bus().changeProperty(upowerPath, upowerName, "OnBattery", true);
    waitFor(battery(57));
    bus().changeProperty(upowerPath, upowerName, "DaemonVersion", "0.99");
    bus().changeProperty(devicePath, device, "Percentage", 56.6); // still 57
    bus().changeProperty(devicePath, device, "Percentage", 55.0);
    waitFor(battery(55));
    EXPECT_THAT(told, ElementsAre(battery(57), battery(55)));

    bus().changeProperty(devicePath, device, "Percentage", "nearly full");
    waitFor(battery({}));
    bus().changeProperty(upowerPath, upowerName, "OnBattery", 1);
    waitFor(charger({}));

    bus().disown(upowerName);
    waitFor(battery(41));
    write("class/power_supply/BAT0/capacity", "40");
    power.sessionRuns(true);
    time.advance(30s);
    EXPECT_EQ(power.snapshot(), battery(40));
    power.sessionRuns(false);
    EXPECT_EQ(time.pendingTasks(), 0U) << "without a session nothing is polled";

    setBattery(true, 39);
    bus().own(upowerName);
    waitFor(battery(39));
}

TEST_F(LinuxServices, PowerDoesNotWaitForAUPowerThatHangs)
{
    const TemporaryDirectory sysfs;
    bus().own(upowerName);
    bus().keepBack("GetAll");
    const LinuxPowerSource power{std::make_shared<UPower>(), time, sysfs.path()};
    EXPECT_EQ(power.snapshot(), PowerSnapshot::desktop());
}

TEST_F(LinuxServices, ABusThatHangsIsNone)
{
    const TemporaryDirectory folder;
    const auto path = (folder / "bus").string();
    const auto socket = unixSocket::make(); // it lets others connect, and says nothing
    const auto address = unixSocket::address(path).value();
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(socket.get(), 1), 0);
    const char* const own = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    ASSERT_TRUE(own);
    const std::string before = own;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    EXPECT_FALSE(openBus(sd_bus_open_system, 20ms));
    setenv("DBUS_SYSTEM_BUS_ADDRESS", before.c_str(), 1);
    EXPECT_TRUE(openBus(sd_bus_open_system, 10s));
}

TEST_F(LinuxServices, LidFollowsUPowerOrElseLogindAndTheDisplays)
{
    const TemporaryDirectory sysfs;
    std::filesystem::create_directories(sysfs / "class/drm/card0-HDMI-A-1");
    const auto setDisplay
        = [&](const char* status) { std::ofstream{sysfs / "class/drm/card0-HDMI-A-1/status"} << status; };
    setDisplay("connected");
    setBattery(false, 80);
    bus().setProperty(upowerPath, upowerName, "LidIsPresent", true);
    bus().setProperty(upowerPath, upowerName, "LidIsClosed", true);
    bus().setProperty(logindPath, manager, "LidClosed", true);
    bus().own(upowerName);
    bus().own(logindName);

    LinuxLid lid{std::make_shared<UPower>(), time, sysfs.path()};
    EXPECT_TRUE(lid.isLidClosed());
    EXPECT_FALSE(lid.isClosedWithoutExternalDisplay());
    std::vector<bool> told;
    lid.onChange = [&](bool closed) { told.push_back(closed); };
    setDisplay("disconnected");
    lid.refresh();
    EXPECT_THAT(told, ElementsAre(true));

    bus().changeProperty(upowerPath, upowerName, "LidIsClosed", false);
    QtApplication::runUntil([&] { return told.size() == 2; });
    bus().disown(upowerName);
    QtApplication::runUntil([&] { return lid.isLidClosed(); });
    EXPECT_THAT(told, ElementsAre(true, false, true)) << "logind says it is closed";

    lid.sessionRuns(true);
    bus().setProperty(logindPath, manager, "LidClosed", false);
    time.advance(5s);
    QtApplication::runUntil([&] { return told.size() == 4; });
    EXPECT_FALSE(lid.isClosedWithoutExternalDisplay());
}

TEST_F(LinuxServices, AppearanceFollowsThePortal)
{
    const auto portal = "org.freedesktop.portal.Desktop", path = "/org/freedesktop/portal/desktop";
    const auto common = "org.freedesktop.appearance", gnomes = "org.gnome.desktop.interface";
    QtMainLoop loop;
    PortalAppearance appearance;
    std::vector<Appearance> seen;
    const ObservationLoop view{loop, [&] { seen.push_back(appearance.current()); }};
    const auto next = [&] {
        seen.clear();
        QtApplication::runUntil([&] { return !seen.empty(); });
        return seen.back();
    };
    const auto change = [&](const char* interface, const char* name, const QVariant& value) {
        bus().setProperty(path, interface, name, value);
        bus().emitSignal(path, "org.freedesktop.portal.Settings", "SettingChanged", {interface, name});
        return next();
    };
    bus().setProperty(path, common, "color-scheme", 1U);
    bus().own(portal);
    EXPECT_EQ(next(), (Appearance{.isDark = true}));
    EXPECT_EQ(change(common, "contrast", 1U), (Appearance{.isDark = true, .hasHighContrast = true}));
    EXPECT_EQ(change(common, "color-scheme", 2U), (Appearance{.hasHighContrast = true})) << "light is wanted";
    EXPECT_EQ(change(gnomes, "enable-animations", false), (Appearance{.hasHighContrast = true, .reducesMotion = true}));
    bus().disown(portal);
    EXPECT_EQ(next(), Appearance{});
}

TEST_F(LinuxServices, SleepIsDelayedUntilTheEndOfTheSessionHasBeenDealtWith)
{
    bus().own(logindName);
    QtMainLoop loop;
    int resumes = 0;
    LogindSleep sleep{loop, lock("sleep", "delay"), "why", [&] { ++resumes; }};
    EXPECT_THAT(held(), IsEmpty()) << "no session, no delay";
    sleep.sessionRuns(true);
    waitUntilHeld({"sleep:delay"});

    std::vector<std::string> steps;
    sleep.onWillSleep = [&] {
        steps.emplace_back("will sleep");
        // What the end of the session sets off, and what that does, still happens under the lock.
        loop.post([&] {
            loop.post([&] {
                EXPECT_THAT(bus().held(), ElementsAre("sleep:delay"));
                steps.emplace_back("dealt with");
            });
        });
    };
    sleep.onDidWake = [&] { steps.emplace_back("did wake"); };
    bus().emitSignal(logindPath, manager, "PrepareForSleep", {"true"}); // malformed
    bus().emitSignal(logindPath, manager, "PrepareForSleep", {true});
    waitUntilHeld({});
    EXPECT_THAT(steps, ElementsAre("will sleep", "dealt with"));
    EXPECT_EQ(resumes, 0);

    bus().emitSignal(logindPath, manager, "PrepareForSleep", {false});
    waitUntilHeld({"sleep:delay"});
    EXPECT_EQ(steps.back(), "did wake");
    EXPECT_EQ(resumes, 1);
    sleep.sessionRuns(false);
    waitUntilHeld({});
}

} // namespace vespra
