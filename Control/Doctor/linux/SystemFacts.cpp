#include "App/System/linux/Sysfs.h"
#include "App/System/linux/UPowerReading.h"
#include "Control/Doctor/DoctorReport.h"
#include "Control/Doctor/linux/Bus.h"
#include "Control/Doctor/linux/LogindSettings.h"
#include "HelperProtocol/Brand.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace vespra::doctor {

namespace {

    constexpr auto sysfsRoot = "/sys";

    constexpr Bus::Object logind{"org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
    constexpr Bus::Object upower{"org.freedesktop.UPower", "/org/freedesktop/UPower", "org.freedesktop.UPower"};
    constexpr Bus::Object displayDevice{
        "org.freedesktop.UPower", "/org/freedesktop/UPower/devices/DisplayDevice", "org.freedesktop.UPower.Device"};
    constexpr Bus::Object sessionManager{
        "org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager"};
    constexpr Bus::Object powerManagement{"org.freedesktop.PowerManagement",
        "/org/freedesktop/PowerManagement/Inhibit",
        "org.freedesktop.PowerManagement.Inhibit"};
    constexpr Bus::Object screenSaver{
        "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver"};
    constexpr Bus::Object policyAgent{"org.kde.Solid.PowerManagement.PolicyAgent",
        "/org/kde/Solid/PowerManagement/PolicyAgent",
        "org.kde.Solid.PowerManagement.PolicyAgent"};

    std::string processName(long pid)
    {
        std::ifstream file{"/proc/" + std::to_string(pid) + "/comm"};
        std::string name;
        std::getline(file, name);
        return name;
    }

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
        const auto word = [](bool closed) { return closed ? "closed" : "open"; };
        if (const auto present = system.flag(upower, "LidIsPresent")) {
            if (!*present)
                return {.name = "Lid", .mechanism = {}, .reading = "this machine has none"};
            return {.name = "Lid",
                .mechanism = "UPower",
                .reading = word(system.flag(upower, "LidIsClosed").value_or(false))};
        }
        if (const auto closed = system.flag(logind, "LidClosed"))
            return {.name = "Lid", .mechanism = "logind, asked every 5 s", .reading = word(*closed)};
        return {.name = "Lid", .mechanism = {}, .reading = {}};
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

    std::optional<std::vector<Inhibitor>> logindLocks(const Bus& system)
    {
        Bus::Answer answer;
        system.call(logind, "ListInhibitors", answer);
        if (!answer || sd_bus_message_enter_container(answer.message, 'a', "(ssssuu)") < 0)
            return {};
        std::vector<Inhibitor> all;
        const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
        std::uint32_t uid = 0, pid = 0;
        while (sd_bus_message_read(answer.message, "(ssssuu)", &what, &who, &why, &mode, &uid, &pid) > 0)
            all.push_back({.service = "logind",
                .what = what,
                .who = who,
                .why = why,
                .mode = mode,
                .pid = pid,
                .uid = uid,
                .process = processName(pid)});
        return all;
    }

    /// Somebody holds it, but the service does not say who.
    Inhibitor anonymous(const char* service)
    {
        return {.service = service, .what = "inhibition", .who = "somebody", .why = "the service does not say who"};
    }

    bool says(const Bus::Answer& answer)
    {
        int value = 0;
        return answer && sd_bus_message_read(answer.message, "b", &value) > 0 && value != 0;
    }

    Inhibitor gnomeInhibitor(const Bus& session, const char* path)
    {
        const Bus::Object inhibitor{sessionManager.service, path, "org.gnome.SessionManager.Inhibitor"};
        Bus::Answer who, why, flags;
        session.call(inhibitor, "GetAppId", who);
        session.call(inhibitor, "GetReason", why);
        session.call(inhibitor, "GetFlags", flags);
        std::uint32_t bits = 0;
        if (flags)
            sd_bus_message_read(flags.message, "u", &bits);
        std::string what = bits & 4 ? "suspend" : "";
        if (bits & 8)
            what += what.empty() ? "idle" : ":idle";
        if (what.empty())
            what = "flags " + std::to_string(bits);
        return {.service = sessionManager.service, .what = what, .who = who.text(), .why = why.text()};
    }

    void addGnomeInhibitors(const Bus& session, std::vector<Inhibitor>& all)
    {
        Bus::Answer answer;
        session.call(sessionManager, "GetInhibitors", answer);
        if (answer && sd_bus_message_enter_container(answer.message, 'a', "o") > 0) {
            for (const char* path = nullptr; sd_bus_message_read(answer.message, "o", &path) > 0;)
                all.push_back(gnomeInhibitor(session, path));
            return;
        }
        constexpr std::uint32_t suspendOrIdle = 4 | 8;
        Bus::Answer isInhibited;
        session.call(sessionManager, "IsInhibited", suspendOrIdle, isInhibited);
        if (says(isInhibited))
            all.push_back(anonymous(sessionManager.service));
    }

    /// False if the agent does not answer.
    bool addPlasmaInhibitions(const Bus& session, std::vector<Inhibitor>& all)
    {
        Bus::Answer answer;
        session.call(policyAgent, "ListInhibitions", answer);
        if (!answer || sd_bus_message_enter_container(answer.message, 'a', "(ss)") < 0)
            return false;
        const char *who = nullptr, *why = nullptr;
        while (sd_bus_message_read(answer.message, "(ss)", &who, &why) > 0)
            all.push_back({.service = policyAgent.service, .what = "inhibition", .who = who, .why = why});
        return true;
    }

    void addAnonymousInhibition(const Bus& session, std::vector<Inhibitor>& all)
    {
        Bus::Answer answer;
        session.call(powerManagement, "HasInhibit", answer);
        if (says(answer))
            all.push_back(anonymous(powerManagement.service));
    }

    // What could defeat a session

    std::string setting(const char* name, const std::optional<std::string>& value, const std::string& fallback)
    {
        return std::string{name} + "=" + value.value_or(fallback + " (the default)");
    }

    std::vector<std::string> threats(const Bus& system, bool hasHelper)
    {
        std::vector<std::string> all;
        all.push_back("Closing the lid: logind would act on it with HandleLidSwitch="
            + system.text(logind, "HandleLidSwitch").value_or("suspend (the default)") + ", "
            + setting("LidSwitchIgnoreInhibited", logindSetting("/", "LidSwitchIgnoreInhibited"), "yes")
            + (hasHelper ? "; closed-lid mode prevents it." : "; only closed-lid mode could prevent it."));
        all.push_back("Idling: logind would act with IdleAction="
            + system.text(logind, "IdleAction")
                .value_or(logindSetting("/", "IdleAction").value_or("ignore (the default)"))
            + "; the idle lock prevents it. The desktop's own idle sleep is its service's business.");
        all.emplace_back("Suspend chosen in a menu or by a key: nothing prevents that, and nothing should.");
        if (const auto power = sysfs::readPower(sysfsRoot); power.batteryLevel && !power.isOnACPower)
            all.push_back("An empty battery: at " + std::to_string(*power.batteryLevel) + " % now.");
        return all;
    }

} // namespace

Facts gatherFacts(const std::optional<SessionMarker::Session>& session)
{
    const auto pid = session ? std::optional{session->pid} : std::nullopt;
    const bool isKDE = names(environment(pid, "XDG_CURRENT_DESKTOP"), "KDE");
    const auto systemBus = Bus::system(), sessionBus = Bus::session();

    Facts facts;
    facts.facilities = {powerSource(systemBus),
        lid(systemBus),
        {.name = "External display",
            .mechanism = "the kernel's connectors",
            .reading = sysfs::hasExternalDisplay(sysfsRoot) ? "connected" : "none"},
        heat(),
        idleSleep(systemBus, sessionBus, isKDE),
        displayAwake(sessionBus, !environment(pid, "DISPLAY").empty()),
        closedLid(systemBus)};
    facts.inhibitors = logindLocks(systemBus);
    facts.listingService = "logind";
    if (isKDE)
        facts.listingService.clear();
    if (facts.inhibitors) {
        addGnomeInhibitors(sessionBus, *facts.inhibitors);
        if (addPlasmaInhibitions(sessionBus, *facts.inhibitors) && isKDE)
            facts.listingService = policyAgent.service;
        addAnonymousInhibition(sessionBus, *facts.inhibitors);
    }
    facts.threats = threats(systemBus, facts.facilities.back().mechanism.has_value());
    return facts;
}

} // namespace vespra::doctor
