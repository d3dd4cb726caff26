#include "Control/Doctor/linux/Keepers.h"

#include <fstream>

namespace vespra::doctor {

namespace {

    constexpr Bus::Object policyAgent{"org.kde.Solid.PowerManagement.PolicyAgent",
        "/org/kde/Solid/PowerManagement/PolicyAgent",
        "org.kde.Solid.PowerManagement.PolicyAgent"};

    constexpr auto suspend = "suspend", inhibition = "inhibition";

    /// False if it does not answer.
    bool addLogindLocks(const Bus& system, std::vector<Inhibitor>& all)
    {
        const auto answer = system.ask(logind, "ListInhibitors");
        if (!answer || sd_bus_message_enter_container(answer.message(), 'a', "(ssssuu)") < 0)
            return false;
        const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
        std::uint32_t uid = 0, pid = 0;
        while (sd_bus_message_read(answer.message(), "(ssssuu)", &what, &who, &why, &mode, &uid, &pid) > 0)
            all.push_back({.service = "logind",
                .what = what,
                .who = who,
                .why = why,
                .mode = mode,
                .pid = pid,
                .uid = uid,
                .process = processName(pid)});
        return true;
    }

    /// Whether it holds anything, for a service that does not say for whom. Nothing known if it does not answer.
    bool tellsThatItHoldsNothing(const Bus::Answer& answer, const char* service, std::vector<Inhibitor>& all)
    {
        int isHeld = 0;
        if (!answer || sd_bus_message_read(answer.message(), "b", &isHeld) <= 0)
            return false;
        if (isHeld != 0)
            all.push_back(
                {.service = service, .what = inhibition, .who = "somebody", .why = "the service does not say who"});
        return isHeld == 0;
    }

    Inhibitor gnomeInhibitor(const Bus& session, const char* path)
    {
        const Bus::Object inhibitor{sessionManager.service, path, "org.gnome.SessionManager.Inhibitor"};
        std::uint32_t bits = 0;
        if (const auto flags = session.ask(inhibitor, "GetFlags"))
            sd_bus_message_read(flags.message(), "u", &bits);
        std::string what = bits & 4 ? suspend : "";
        if (bits & 8)
            what += what.empty() ? "idle" : ":idle";
        if (what.empty())
            what = "flags " + std::to_string(bits);
        return {.service = sessionManager.service,
            .what = what,
            .who = session.ask(inhibitor, "GetAppId").text(),
            .why = session.ask(inhibitor, "GetReason").text()};
    }

    Keeper askSessionManager(const Bus& session, std::vector<Inhibitor>& all)
    {
        constexpr std::uint32_t suspendFlag = 4;
        Keeper keeper{.service = sessionManager.service, .what = suspend, .tellsAll = true};
        const auto answer = session.ask(sessionManager, "GetInhibitors");
        if (answer && sd_bus_message_enter_container(answer.message(), 'a', "o") > 0)
            for (const char* path = nullptr; sd_bus_message_read(answer.message(), "o", &path) > 0;)
                all.push_back(gnomeInhibitor(session, path));
        else
            keeper.tellsAll = tellsThatItHoldsNothing(
                session.ask(sessionManager, "IsInhibited", "u", suspendFlag), keeper.service.c_str(), all);
        return keeper;
    }

    /// Plasma lists the inhibitions at a place of its own; others do not say for whom they hold one.
    Keeper askPowerManagement(const Bus& session, std::vector<Inhibitor>& all)
    {
        const auto answer = session.ask(policyAgent, "ListInhibitions");
        if (answer && sd_bus_message_enter_container(answer.message(), 'a', "(ss)") > 0) {
            const char *who = nullptr, *why = nullptr;
            while (sd_bus_message_read(answer.message(), "(ss)", &who, &why) > 0)
                all.push_back({.service = policyAgent.service, .what = inhibition, .who = who, .why = why});
            return {.service = policyAgent.service, .what = inhibition, .tellsAll = true};
        }
        const auto isHeld = session.ask(powerManagement, "HasInhibit");
        return {.service = powerManagement.service,
            .what = inhibition,
            .tellsAll = tellsThatItHoldsNothing(isHeld, powerManagement.service, all)};
    }

} // namespace

std::string processName(long pid)
{
    std::ifstream file{"/proc/" + std::to_string(pid) + "/comm"};
    std::string name;
    std::getline(file, name);
    return name;
}

void addKeepers(const Bus& system, const Bus& session, bool isKDE, Facts& facts)
{
    const bool logindAnswers = addLogindLocks(system, facts.inhibitors);
    if (!isKDE)
        facts.keepers.push_back({.service = "logind", .what = "idle", .tellsAll = logindAnswers});
    if (session.isOwned(sessionManager.service))
        facts.keepers.push_back(askSessionManager(session, facts.inhibitors));
    else if (session.isOwned(powerManagement.service))
        facts.keepers.push_back(askPowerManagement(session, facts.inhibitors));
}

} // namespace vespra::doctor
