#include "Control/Doctor/DoctorReport.h"

#include "Control/Doctor/linux/LogindSettings.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

namespace vespra::doctor {

TEST(Doctor, MissesTheLockOfARunningSession)
{
    const SessionMarker::Session running{.pid = 7, .platform = "linux"};
    const std::string logind = "logind", plasma = "org.kde.Solid.PowerManagement.PolicyAgent";
    const auto lock = [](const std::string& service, const char* who, const char* mode, long pid) {
        return std::vector{
            Inhibitor{.service = service, .what = "idle", .who = who, .why = "", .mode = mode, .pid = pid}};
    };
    const auto ours = lock(logind, "Vespra", "block", 7), none = std::vector<Inhibitor>{};
    struct Row {
        const char* rule;
        std::optional<SessionMarker::Session> session;
        std::optional<std::vector<Inhibitor>> inhibitors;
        std::string service;
        Verdict expected;
    };
    for (const auto& row : std::vector<Row>{
             {"nothing runs", {}, ours, logind, Verdict::noSession},
             {"it is a simulation", {{7, "simulated"}}, none, logind, Verdict::simulated},
             {"our lock is there", running, ours, logind, Verdict::listed},
             {"nothing is there", running, none, logind, Verdict::missing},
             {"another's lock", running, lock(logind, "Other", "block", 7), logind, Verdict::missing},
             {"an earlier process's", running, lock(logind, "Vespra", "block", 6), logind, Verdict::missing},
             {"a delay is no lock", running, lock(logind, "Vespra", "delay", 7), logind, Verdict::missing},
             {"Plasma does not say the process", running, lock(plasma, "Vespra", "", 0), plasma, Verdict::listed},
             {"another service's list does not count", running, ours, plasma, Verdict::missing},
             {"no service lists it", running, none, "", Verdict::unknown},
             {"the service does not answer", running, {}, logind, Verdict::unknown},
         }) {
        SCOPED_TRACE(row.rule);
        const Report report{
            .session = row.session, .facts = {.inhibitors = row.inhibitors, .listingService = row.service}};
        EXPECT_EQ(report.verdict("Vespra"), row.expected);
    }
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
