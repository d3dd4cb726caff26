#include "App/System/linux/Sysfs.h"
#include "App/System/linux/UPowerReading.h"
#include "Control/Doctor/DoctorReport.h"
#include "Control/Doctor/linux/Bus.h"
#include "Control/Doctor/linux/Keepers.h"
#include "Control/Doctor/linux/LidRules.h"
#include "Control/Doctor/linux/LogindSettings.h"
#include "HelperProtocol/Brand.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace vespra::doctor {

namespace {

    constexpr auto sysfsRoot = "/sys";
    constexpr auto sessionBusAddress = "DBUS_SESSION_BUS_ADDRESS";

    constexpr Bus::Object upower{"org.freedesktop.UPower", "/org/freedesktop/UPower", "org.freedesktop.UPower"};
    constexpr Bus::Object displayDevice{
        "org.freedesktop.UPower", "/org/freedesktop/UPower/devices/DisplayDevice", "org.freedesktop.UPower.Device"};
    constexpr Bus::Object screenSaver{
        "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver"};
    /// A variable of another process's environment; of this one's, if that cannot be read.
    std::string environment(std::optional<long> pid, const std::string& name)
    {
        if (pid) {
            std::ifstream file{"/proc/" + std::to_string(*pid) + "/environ"};
            for (std::string entry; std::getline(file, entry, '\0');)
                if (entry.starts_with(name + "="))
                    return entry.substr(name.size() + 1);
            if (file.eof())
                return {};
        }
        const char* value = std::getenv(name.c_str());
        return value ? value : "";
    }

    bool names(const std::string& desktops, std::string_view one)
    {
        return (":" + desktops + ":").find(":" + std::string{one} + ":") != std::string::npos;
    }

    std::string text(const PowerSnapshot& power)
    {
        const std::string level
            = power.batteryLevel ? ", battery at " + std::to_string(*power.batteryLevel) + " %" : ", no battery level";
        return (power.isOnACPower ? "on the charger" : "on battery") + level;
    }

    // Readings

    Facility powerSource(const Bus& system)
    {
        const auto type = system.count(displayDevice, "Type");
        if (!type)
            return {.name = "Power source",
                .mechanism = "the kernel's files (UPower does not answer)",
                .reading = text(sysfs::readPower(sysfsRoot))};
        return {.name = "Power source",
            .mechanism = "UPower",
            .reading = text(powerSnapshot(UPowerReading{.onBattery = system.flag(upower, "OnBattery"),
                .deviceType = type,
                .isPresent = system.flag(displayDevice, "IsPresent"),
                .percentage = system.number(displayDevice, "Percentage")}))};
    }

    Facility lid(const Bus& system)
    {
        const auto word = [](std::optional<bool> closed) {
            return !closed ? "not known" : *closed ? "closed" : "open";
        };
        if (const auto present = system.flag(upower, "LidIsPresent")) {
            if (!*present)
                return {.name = "Lid", .mechanism = {}, .reading = "this machine has none"};
            return {.name = "Lid", .mechanism = "UPower", .reading = word(system.flag(upower, "LidIsClosed"))};
        }
        if (const auto closed = system.flag(logind, "LidClosed"))
            return {.name = "Lid", .mechanism = "logind, asked every 5 s", .reading = word(closed)};
        return {.name = "Lid", .mechanism = {}, .reading = word({})};
    }

    Facility heat()
    {
        const auto samples = sysfs::readThermometers(sysfsRoot);
        std::string hottest;
        double margin = 0;
        for (const auto& sample : samples)
            if (sample.limit && (hottest.empty() || *sample.limit - sample.temperature < margin)) {
                margin = *sample.limit - sample.temperature;
                hottest = sample.sensor + " at " + std::to_string(std::lround(sample.temperature)) + " of "
                    + std::to_string(std::lround(*sample.limit)) + " degrees";
            }
        if (hottest.empty())
            return {.name = "Heat", .mechanism = {}, .reading = "no sensor states a limit, so it counts as nominal"};
        return {.name = "Heat", .mechanism = "the kernel's thermometers", .reading = hottest};
    }

    // Inhibitions

    std::string firstOwned(const Bus& session, std::initializer_list<Bus::Object> services)
    {
        for (const auto& each : services)
            if (session.isOwned(each.service))
                return each.service;
        return {};
    }

    Facility idleSleep(const Bus& system, const Bus& session, bool isKDE)
    {
        auto mechanism = firstOwned(session, {sessionManager, powerManagement});
        if (!isKDE && system.isOwned(logind.service))
            mechanism += mechanism.empty() ? "logind (idle)" : ", logind (idle)";
        return {.name = "Idle sleep",
            .mechanism = mechanism.empty() ? std::nullopt : std::optional{mechanism},
            .reading = {}};
    }

    Facility displayAwake(const Bus& session, bool hasX11)
    {
        auto mechanism = firstOwned(session, {screenSaver, sessionManager, powerManagement});
        if (mechanism.empty() && hasX11)
            mechanism = "the X server's screen saver";
        return {.name = "Display awake",
            .mechanism = mechanism.empty() ? std::nullopt : std::optional{mechanism},
            .reading = {}};
    }

    Facility closedLid(const Bus& system)
    {
        const auto& name = Brand::helperBundleID();
        if (system.isOwned(name.c_str()))
            return {.name = "Closed lid", .mechanism = name, .reading = "running"};
        if (system.isActivatable(name))
            return {.name = "Closed lid", .mechanism = name, .reading = "started on demand"};
        return {.name = "Closed lid", .mechanism = {}, .reading = "the helper is not installed"};
    }

    // What could defeat a session

    /// What logind has in force; what its files say if this version of it does not tell; else its default.
    std::string setting(const Bus& system, const char* name, const char* fallback)
    {
        if (const auto value = system.text(logind, name); value && !value->empty())
            return *value;
        return logindSetting("/", name).value_or(fallback);
    }

    std::optional<std::string> powerManagerOf(const Bus& session)
    {
        const auto owner = session.owner(powerManagement.service);
        if (!owner)
            return {};
        const auto name = processName(*owner);
        return name.empty() ? powerManagement.service : name;
    }

    LidRules lidRules(const Bus& system, const Bus& session, bool hasHelper)
    {
        constexpr auto unset = "";
        const auto onExternalPower = setting(system, "HandleLidSwitchExternalPower", unset);
        return {.isThere = system.flag(upower, "LidIsPresent"),
            .isDocked = system.flag(logind, "Docked"),
            .isOnExternalPower = system.flag(logind, "OnExternalPower"),
            .action = setting(system, "HandleLidSwitch", "suspend"),
            .actionOnExternalPower = onExternalPower == unset ? std::nullopt : std::optional{onExternalPower},
            .actionDocked = setting(system, "HandleLidSwitchDocked", "ignore"),
            .ignoresSleepLocks = saysYes(logindSetting("/", "LidSwitchIgnoreInhibited").value_or("yes")),
            .desktop = powerManagerOf(session),
            .hasHelper = hasHelper};
    }

    std::string idling(const Bus& system)
    {
        if (!system.flag(logind, "Docked"))
            return "Idling: logind does not answer, so nobody can tell what it would do.";
        return "Idling: logind would act with IdleAction=" + setting(system, "IdleAction", "ignore")
            + "; the idle lock prevents it. The desktop's own idle sleep is its service's business.";
    }

    std::vector<std::string> threats(const Bus& system, const LidRules& lid, const std::vector<Inhibitor>& held)
    {
        std::vector<std::string> all{lidThreat(lid, held, Brand::appName()),
            idling(system),
            "Suspend chosen in a menu or by a key: nothing prevents that, and nothing should."};
        if (const auto power = sysfs::readPower(sysfsRoot); power.batteryLevel && !power.isOnACPower)
            all.push_back("An empty battery: at " + std::to_string(*power.batteryLevel) + " % now.");
        return all;
    }

    /// The bus on which the session's process asks its desktop. Without a session it is this program's own.
    Bus sessionBus(std::optional<long> pid)
    {
        if (const auto address = environment(pid, sessionBusAddress); !address.empty())
            setenv(sessionBusAddress, address.c_str(), 1);
        return Bus::session();
    }

} // namespace

Facts gatherFacts(const std::optional<SessionMarker::Session>& session)
{
    const auto pid = session ? std::optional{session->pid} : std::nullopt;
    const bool isKDE = names(environment(pid, "XDG_CURRENT_DESKTOP"), "KDE");
    const auto systemBus = Bus::system(), desktopBus = sessionBus(pid);

    Facts facts;
    facts.facilities = {powerSource(systemBus),
        lid(systemBus),
        {.name = "External display",
            .mechanism = "the kernel's connectors",
            .reading = sysfs::hasExternalDisplay(sysfsRoot) ? "connected" : "none"},
        heat(),
        idleSleep(systemBus, desktopBus, isKDE),
        displayAwake(desktopBus, !environment(pid, "DISPLAY").empty()),
        closedLid(systemBus)};
    addKeepers(systemBus, desktopBus, isKDE, facts);
    if (!desktopBus.isOpen() && !environment(pid, sessionBusAddress).empty())
        facts.keepers.push_back({.service = "the desktop", .what = {}, .tellsAll = false});
    const bool hasHelper = facts.facilities.back().mechanism.has_value();
    facts.threats = threats(systemBus, lidRules(systemBus, desktopBus, hasHelper), facts.inhibitors);
    return facts;
}

} // namespace vespra::doctor
