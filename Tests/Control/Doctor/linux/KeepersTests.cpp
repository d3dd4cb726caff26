#include "Control/Doctor/linux/Keepers.h"

#include "Tests/Support/MockBus.h"

#include <unistd.h>

namespace vespra::doctor {

namespace {

    using Keepers = BusTest;

    /// What is held, and who is asked for a session's lock.
    std::string described(const Facts& facts)
    {
        std::string text;
        for (const auto& each : facts.inhibitors)
            text += each.service + ": " + each.what + ", " + each.who + ", " + each.why + " " + each.mode
                + (each.pid == getpid() && each.process == processName(getpid()) ? " by this process" : "") + "; ";
        for (const auto& each : facts.keepers)
            text += "asks " + each.service + " for " + each.what + (each.tellsAll ? "; " : ", which does not tell; ");
        return text;
    }

} // namespace

TEST_F(Keepers, SayInTheirOwnWordsWhatTheyHold)
{
    const QString logindName = logind.service, gnome = sessionManager.service, other = powerManagement.service,
                  plasma = "org.kde.Solid.PowerManagement.PolicyAgent";
    const std::string lock
        = R"({"foreign": [["sleep:idle", "apt", "upgrades", "block", 0, )" + std::to_string(getpid());
    const auto listed = [](const std::string& flags) {
        return R"({"answers": {"GetInhibitors": ["ao", ["/a"]], "GetAppId": ["s", "editor"],
                               "GetReason": ["s", "saves"], "GetFlags": ["u", )"
            + flags + "]}}";
    };
    const std::string asksGnome = "asks org.gnome.SessionManager for suspend";
    const std::string asksOther = "asks org.freedesktop.PowerManagement for inhibition";
    const std::string fromGnome = "org.gnome.SessionManager: ", hides = ", which does not tell; ";
    const auto silent = "asks logind for idle" + hides;
    const auto listsPlasma
        = plasma.toStdString() + ": inhibition, editor, saves ; asks " + plasma.toStdString() + " for inhibition; ";
    struct Row {
        QStringList services;
        bool isKDE;
        std::string answers, expected;
    };
    for (const auto& [services, isKDE, answers, expected] : std::vector<Row>{
             {{}, false, "{}", silent},
             {{logindName},
                 false,
                 lock + "]]}",
                 "logind: sleep:idle, apt, upgrades block by this process; asks logind for idle; "},
             {{gnome, other}, true, listed("4"), fromGnome + "suspend, editor, saves ; " + asksGnome + "; "},
             {{gnome}, true, listed("12"), fromGnome + "suspend:idle, editor, saves ; " + asksGnome + "; "},
             {{gnome}, true, listed("8"), fromGnome + "idle, editor, saves ; " + asksGnome + "; "},
             {{gnome}, true, listed("1"), fromGnome + "flags 1, editor, saves ; " + asksGnome + "; "},
             {{gnome}, true, R"({"answers": {"IsInhibited": ["b", false]}})", asksGnome + "; "},
             {{gnome},
                 true,
                 R"({"answers": {"IsInhibited": ["b", true]}})",
                 fromGnome + "inhibition, somebody, the service does not say who ; " + asksGnome + hides},
             {{gnome}, true, "{}", asksGnome + hides},
             {{other}, true, R"({"answers": {"HasInhibit": ["b", false]}})", asksOther + "; "},
             {{other, plasma},
                 true,
                 R"x({"answers": {"ListInhibitions": ["a(ss)", [["editor", "saves"]]]}})x",
                 listsPlasma},
         }) {
        SCOPED_TRACE(answers + " of " + services.join(" ").toStdString());
        bus().reset();
        for (const auto& service : services)
            bus().own(service);
        bus().set(answers.c_str());
        Facts facts;
        addKeepers(Bus::system(), Bus::session(), isKDE, facts);
        EXPECT_EQ(described(facts), expected);
    }
}

} // namespace vespra::doctor
