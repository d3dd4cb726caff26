#include "Helper/linux/SelfInstaller.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace vespra {

namespace {

    namespace fs = std::filesystem;

    struct SelfInstallerTest : testing::Test {
        TemporaryDirectory root;
        SelfInstaller installer{root.path()};
        fs::path program = root / "vespra-helper built by a user";
        fs::path installed = root / "usr/local/libexec/vespra-helper";
        fs::path activation = root / "usr/local/share/dbus-1/system-services/app.vespra.Helper.service";

        SelfInstallerTest() { putText(program, "the program"); }
        int installedFiles() const
        {
            int count = 0;
            for (const auto& entry : fs::recursive_directory_iterator{root.path()})
                count += entry.is_regular_file() && entry.path() != program;
            return count;
        }
    };

    TEST_F(SelfInstallerTest, TheServiceRunsACopyThatOnlyItsOwnerCanChange)
    {
        fs::permissions(program, fs::perms::all);
        ASSERT_TRUE(installer.install(program));
        EXPECT_EQ(textOf(installed), "the program");
        struct stat status{};
        ASSERT_EQ(stat(installed.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0755u);
        for (const auto& [file, line] : std::vector<std::pair<fs::path, const char*>>{
                 {activation, "\nExec=/usr/local/libexec/vespra-helper\n"},
                 {root / "etc/systemd/system/vespra-helper.service", "\nExecStart=/usr/local/libexec/vespra-helper\n"},
                 {root / "etc/dbus-1/system.d/app.vespra.Helper.conf", "<allow own=\"app.vespra.Helper\"/>"},
                 {root / "usr/share/polkit-1/actions/app.vespra.Helper.policy", "<action id=\"app.vespra.helper."},
             })
            EXPECT_THAT(textOf(file).value_or(""), testing::HasSubstr(line));
        EXPECT_EQ(installedFiles(), 5);
        ASSERT_TRUE(installer.install(program)) << "an update";
        ASSERT_TRUE(installer.uninstall());
        EXPECT_EQ(installedFiles(), 0);
        EXPECT_TRUE(installer.uninstall());
    }

    TEST_F(SelfInstallerTest, RefusesWhereOthersMayWrite)
    {
        for (const auto* open : {"usr/local", "usr/local/libexec", "etc/dbus-1/system.d"}) {
            SCOPED_TRACE(open);
            fs::create_directories(root / open);
            fs::permissions(root / open, fs::perms::all);
            const auto result = installer.install(program);
            ASSERT_FALSE(result);
            EXPECT_THAT(result.error(), testing::HasSubstr((root / open).string()));
            EXPECT_EQ(installedFiles(), 0);
            fs::permissions(root / open, fs::perms{0755});
        }
    }

    TEST_F(SelfInstallerTest, LeavesNothingBehindAFailure)
    {
        fs::create_directories(activation); // in the way
        EXPECT_FALSE(installer.install(program));
        EXPECT_EQ(installedFiles(), 0);
        EXPECT_FALSE(installer.install(root / "not there"));
    }

    TEST_F(SelfInstallerTest, LeavesAPackageAlone)
    {
        putText(root / "usr/share/dbus-1/system-services/app.vespra.Helper.service", "[D-BUS Service]");
        EXPECT_FALSE(installer.install(program));
        EXPECT_EQ(installedFiles(), 1);
    }

} // namespace

} // namespace vespra
