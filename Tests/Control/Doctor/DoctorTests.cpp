#include "Control/Doctor/DoctorReport.h"

#include "Control/Doctor/linux/LidRules.h"
#include "Control/Doctor/linux/LogindSettings.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>

namespace vespra::doctor {

TEST(Doctor, BelievesThatASessionIsHeldOnlyIfEachServiceSaysSo)
{
    const SessionMarker::Session running{.pid = 7, .platform = "linux"};
    using Text = const char*;
    const auto held = [](Text service, Text what, Text who = "Vespra", Text mode = "block", long pid = 7) {
        return Inhibitor{.service = service, .what = what, .who = who, .why = "", .mode = mode, .pid = pid};
    };
    const Inhibitor ours = held("logind", "idle"), gnome = held("gsm", "suspend", "Vespra", "", 0),
                    another = held("gsm", "suspend", "Other", "", 0);
    const Keeper logind{"logind", "idle", true}, silentLogind{"logind", "idle", false}, desktop{"gsm", "suspend", true},
        silentDesktop{"gsm", "suspend", false};
    struct Row {
        const char* rule;
        std::optional<SessionMarker::Session> session;
        std::vector<Inhibitor> inhibitors;
        std::vector<Keeper> keepers;
        Verdict expected;
    };
    for (const auto& row : std::vector<Row>{
             {"nothing runs", {}, {ours}, {logind}, Verdict::noSession},
             {"it is a simulation", {{7, "simulated"}}, {}, {logind}, Verdict::simulated},
             {"our lock is there", running, {ours}, {logind}, Verdict::listed},
             {"nothing is there", running, {}, {logind}, Verdict::missing},
             {"another's lock", running, {held("logind", "idle", "Vespra", "block", 6)}, {logind}, Verdict::missing},
             {"a delay", running, {held("logind", "sleep:idle", "Vespra", "delay")}, {logind}, Verdict::missing},
             {"for something else", running, {held("logind", "sleep")}, {logind}, Verdict::missing},
             {"both list it", running, {ours, gnome}, {logind, desktop}, Verdict::listed},
             {"the desktop does not", running, {ours}, {logind, desktop}, Verdict::missing},
             {"logind does not", running, {gnome}, {logind, desktop}, Verdict::missing},
             {"the desktop lists another's", running, {ours, another}, {logind, desktop}, Verdict::missing},
             {"the desktop does not tell", running, {ours}, {logind, silentDesktop}, Verdict::unknown},
             {"it is missing in any case", running, {}, {logind, silentDesktop}, Verdict::missing},
             {"logind does not answer", running, {gnome}, {silentLogind, desktop}, Verdict::unknown},
             {"no service is asked", running, {}, {}, Verdict::unknown},
         }) {
        SCOPED_TRACE(row.rule);
        const Report report{.session = row.session, .facts = {.inhibitors = row.inhibitors, .keepers = row.keepers}};
        EXPECT_EQ(report.verdict("Vespra"), row.expected);
    }
}

TEST(LidRules, AreThoseThatApply)
{
    const auto lock = [](const char* what, const char* who) {
        return std::vector<Inhibitor>{{"logind", what, who, "", "block", 9, {}, "p"}};
    };
    const std::vector<Inhibitor> none, sleep = lock("idle:sleep", "Other");
    constexpr bool yes = true, no = false;
    struct Row {
        LidRules rules;
        std::vector<Inhibitor> held;
        const char* expected;
    };
    for (const auto& [rules, held, expected] :
        std::vector<Row>{
            {{yes, no}, sleep, "logind would act by HandleLidSwitch=suspend; only closed-lid mode could prevent it."},
            {{no, no}, none, "this machine has none."},
            {{{}, no, no, "ignore"}, none, "by HandleLidSwitch=ignore. Whether there is a lid is not known."},
            {{yes, {}}, none, "logind does not answer, so nobody can tell what it would do; only"},
            {{yes, yes}, none, "logind does nothing, by HandleLidSwitchDocked=ignore (docked, or more"},
            {{yes, no, yes, "off", "lock"}, none, "would act by HandleLidSwitchExternalPower=lock (on external"},
            {{yes, no, yes, "off"}, none, "would act by HandleLidSwitch=off;"},
            {{yes, no, no, "off", "lock"}, none, "would act by HandleLidSwitch=off;"},
            {{.isThere = yes, .isDocked = no, .ignoresSleepLocks = no}, sleep, "sleep lock of Other (p 9) stop it."},
            {{yes, no},
                {{"logind", "handle-lid-switch", "Other", "", "delay"}},
                "logind would act by HandleLidSwitch="},
            {{yes, no}, lock("handle-lid-switch", "Other"), "logind leaves it to Other (p 9), which holds"},
            {{.isThere = yes, .isDocked = no, .desktop = "xfpm"}, lock("sleep:handle-lid-switch", "Vespra"), "nothing"},
            {{.isThere = yes, .isDocked = yes, .desktop = "xfpm", .hasHelper = yes},
                none,
                "display); xfpm may act on it too, by its own settings; closed-lid mode prevents it."},
        })
        EXPECT_THAT(lidThreat(rules, held, "Vespra"), testing::HasSubstr(expected));
}

TEST(LogindSettings, ComeFromTheLastFileThatSetsThem)
{
    const TemporaryDirectory root;
    const auto write = [&](const char* name, const char* text) { putText(root / name, text); };
    EXPECT_EQ(logindSetting(root.path(), "IdleAction"), std::nullopt);
    write("etc/systemd/logind.conf", "[Login]\n#IdleAction=lock\n IdleAction = suspend \n");
    EXPECT_EQ(logindSetting(root.path(), "IdleAction"), "suspend");
    EXPECT_EQ(logindSetting(root.path(), "LidSwitchIgnoreInhibited"), std::nullopt);
    write("usr/lib/systemd/logind.conf.d/50-a.conf", "IdleAction=lock\n");
    write("run/systemd/logind.conf.d/40-b.conf", "IdleAction=poweroff\n");
    EXPECT_EQ(logindSetting(root.path(), "IdleAction"), "lock");
    write("etc/systemd/logind.conf.d/50-a.conf", "IdleAction=\n");
    EXPECT_EQ(logindSetting(root.path(), "IdleAction"), std::nullopt) << "etc hides usr/lib; empty is the default";
}

} // namespace vespra::doctor
