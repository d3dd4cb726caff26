#include "Helper/linux/SelfInstaller.h"

#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
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

        SelfInstallerTest() { std::ofstream{program} << "the program"; }
        static std::string text(const fs::path& path)
        {
            std::ifstream file{path};
            return {std::istreambuf_iterator<char>{file}, {}};
        }
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
        EXPECT_EQ(text(installed), "the program");
        struct stat status{};
        ASSERT_EQ(stat(installed.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0755u);
        EXPECT_THAT(text(activation), testing::HasSubstr("\nExec=/usr/local/libexec/vespra-helper\n"));
        EXPECT_THAT(text(root / "etc/systemd/system/vespra-helper.service"),
            testing::HasSubstr("\nExecStart=/usr/local/libexec/vespra-helper\n"));
        EXPECT_THAT(text(root / "etc/dbus-1/system.d/app.vespra.Helper.conf"),
            testing::HasSubstr("<allow own=\"app.vespra.Helper\"/>"));
        EXPECT_THAT(text(root / "usr/share/polkit-1/actions/app.vespra.Helper.policy"),
            testing::HasSubstr("<action id=\"app.vespra.helper.closed-lid\">"));
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
        const auto packaged = root / "usr/share/dbus-1/system-services/app.vespra.Helper.service";
        fs::create_directories(packaged.parent_path());
        std::ofstream{packaged} << "[D-BUS Service]";
        EXPECT_FALSE(installer.install(program));
        EXPECT_EQ(installedFiles(), 1);
    }

} // namespace

} // namespace vespra
