#include "Helper/linux/SelfInstaller.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <array>
#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>

/// Nothing here outlives the test: the disk need not have it.
extern "C" int __wrap_fsync(int descriptor); // NOLINT(bugprone-reserved-identifier)

namespace vespra {

namespace {

    namespace fs = std::filesystem;

    /// What befalls which of the files that are kept on the disk.
    struct SyncFault {
        int after = -1;
        int (*happens)(int descriptor) = nullptr;
    } syncFault;

    constexpr auto libexec = "usr/local/libexec/app.vespra.Helper";
    const std::map<std::string, const char*> installed{
        {"usr/local/libexec/app.vespra.Helper/vespra-helper", "the program"},
        {"lib/dbus-1/system-services/app.vespra.Helper.service",
            "Exec=/usr/local/libexec/app.vespra.Helper/"
            "vespra-helper\nUser=root\nSystemdService=vespra-helper-local.service"},
        {"etc/systemd/system/vespra-helper-local.service",
            "ExecStart=/usr/local/libexec/app.vespra.Helper/vespra-helper"},
        {"etc/dbus-1/system.d/app.vespra.Helper-local.conf", "<allow own=\"app.vespra.Helper\"/>"},
        {"usr/share/polkit-1/actions/app.vespra.Helper-local.policy", "<action id=\"app.vespra.helper."},
        {"usr/local/libexec/app.vespra.Helper/directories", "usr/local/libexec"},
    };
    constexpr auto packagedActivation = "usr/share/dbus-1/system-services/app.vespra.Helper.service";

    /// Gives user 1234 every right to `path`; the group has none beyond reading.
    void openByAccessList(const fs::path& path, const char* kind)
    {
        struct Entry {
            std::uint16_t tag, rights;
            std::uint32_t id;
        };
        constexpr std::uint32_t nobody = ~0U;
        struct {
            std::uint32_t version = 2;
            std::array<Entry, 5> entries{
                {{1, 7, nobody}, {2, 7, 1234}, {4, 5, nobody}, {16, 7, nobody}, {32, 5, nobody}}};
        } const list;
        EXPECT_EQ(setxattr(path.c_str(), kind, &list, sizeof list, 0), 0);
    }

    struct SelfInstallerTest : testing::Test {
        TemporaryDirectory root, home;
        InstallationUsers users{.owner = geteuid()};
        SelfInstaller installer{root.path(), users};
        fs::path program = home / "vespra-helper built by a user";

        SelfInstallerTest() { putText(program, std::string(200'000, '\0') + "the program"); }
        /// Every file and directory, and what is in it.
        std::map<std::string, std::string> tree() const
        {
            std::map<std::string, std::string> found;
            for (const auto& entry : fs::recursive_directory_iterator{root.path()})
                found[entry.path()] = entry.is_regular_file() ? textOf(entry.path()).value() : "";
            return found;
        }
        static std::string failure(const SelfInstaller& asked, const fs::path& program)
        {
            const auto result = asked.install(program);
            return result ? "" : result.error();
        }
        std::string refusal(const SelfInstaller& asked) const
        {
            const auto before = tree();
            const auto error = failure(asked, program);
            EXPECT_EQ(tree(), before);
            return error;
        }
    };

    TEST_F(SelfInstallerTest, TheServiceRunsACopyThatOnlyItsOwnerCanChange)
    {
        fs::create_directories(root / "usr/lib");
        fs::create_symlink("usr/lib", root / "lib");
        openByAccessList(root / "usr/lib", "system.posix_acl_default");
        const auto before = tree();
        EXPECT_FALSE(installer.verify(program));
        for (const auto* version : {"the program", "another version of the program"}) {
            putText(program, version);
            ASSERT_EQ(failure(installer, program), "");
            EXPECT_TRUE(installer.verify(program));
            for (const auto& [path, line] : installed) {
                EXPECT_THAT(textOf(root / path).value_or(""), testing::HasSubstr(line)) << path;
                struct stat status{};
                ASSERT_EQ(stat((root / path).c_str(), &status), 0);
                EXPECT_EQ(status.st_mode & 07777, path.ends_with("/vespra-helper") ? 0755u : 0644u);
                EXPECT_LT(getxattr((root / path).c_str(), "system.posix_acl_access", nullptr, 0), 0);
            }
            EXPECT_EQ(textOf(root / libexec / "vespra-helper"), version);
            EXPECT_EQ(std::distance(fs::directory_iterator{root / libexec}, {}), 2);
            // As an installation leaves them that was killed.
            for (const auto* remains : {"vespra-helper.new", "vespra-helper.old"})
                putText(root / libexec / remains, "remains");
        }
        for (const auto& [path, unused] : installed) {
            const bool isProven = !path.ends_with("/directories");
            const auto content = textOf(root / path).value_or("");
            const auto mode = fs::status(root / path).permissions();
            fs::permissions(root / path, fs::perms{0700});
            EXPECT_EQ(installer.verify(program).has_value(), !isProven);
            fs::permissions(root / path, mode);
            putText(root / path, "changed");
            EXPECT_EQ(installer.verify(program).has_value(), !isProven);
            putText(root / path, content);
        }
        putText(root / "var/lib/vespra-helper/sleep-override.json", "{}");
        EXPECT_EQ(installer.uninstall().failures.size() + installer.removeState().failures.size(), 0u);
        fs::remove_all(root / "var");
        EXPECT_EQ(tree(), before);
        EXPECT_TRUE(installer.uninstall().removed.empty() && installer.removeState().removed.empty());
    }

    TEST_F(SelfInstallerTest, RefusesEveryPlaceThatAnotherUserCanChange)
    {
        const auto open = [](const fs::path& path, int mode) {
            fs::create_directories(path);
            fs::permissions(path, static_cast<fs::perms>(mode));
        };
        const std::vector<std::pair<const char*, std::function<void(const fs::path&)>>> places{
            {"usr/local", [&](const auto& path) { open(path, 0757); }},
            {"usr/local/libexec", [&](const auto& path) { open(path, 01777); }},
            {libexec, [&](const auto& path) { open(path, 0775); }},
            {"etc/dbus-1/system.d",
                [&](const auto& path) { open(path, 0755), openByAccessList(path, "system.posix_acl_access"); }},
            {"etc/others", // on the way of a symbolic link
                [&](const auto& path) {
                    open(path / "systemd", 0755), open(path, 0777);
                    fs::create_symlink("/etc/others/systemd", root / "etc/systemd");
                }},
        };
        for (const auto& [place, prepare] : places) {
            prepare(root / place);
            EXPECT_THAT(refusal(installer), testing::StartsWith((root / place).string() + " can be changed by others"));
            fs::permissions(root / place, fs::perms{0755});
            removexattr((root / place).c_str(), "system.posix_acl_access");
        }
        EXPECT_EQ(failure(installer, program), "");
        EXPECT_THAT(
            refusal(SelfInstaller{root.path(), {.owner = geteuid() + 1}}), testing::HasSubstr("it belongs to user"));
    }

    TEST_F(SelfInstallerTest, InstallsOnlyAProgramThatItsCallerAloneCanChange)
    {
        const auto elsewhere = home / "another";
        const auto mode = [](const fs::path& path, int bits) { fs::permissions(path, static_cast<fs::perms>(bits)); };
        const SelfInstaller ofGroup{root.path(), {.owner = geteuid(), .callersGroup = getegid()}};
        mode(home.path(), 0775);
        mode(program, 01757);
        EXPECT_THAT(refusal(ofGroup), testing::StartsWith(program.string() + " can be changed"));
        mode(program, 0775);
        EXPECT_THAT(refusal(installer), testing::StartsWith(home.path().string() + " can be changed"));
        EXPECT_EQ(failure(ofGroup, program), "");
        openByAccessList(program, "system.posix_acl_access");
        EXPECT_THAT(refusal(ofGroup), testing::StartsWith(program.string() + " can be changed"));
        const FileDescriptor open{::open(program.c_str(), O_RDONLY | O_CLOEXEC)};
        fs::copy_file(program, elsewhere);
        fs::rename(elsewhere, program);
        fs::copy_file(program, program.string() + " (deleted)"); // as the system calls the one that is open
        EXPECT_THAT(
            failure(ofGroup, "/proc/self/fd/" + std::to_string(open.get())), testing::HasSubstr("been replaced"));
        if (geteuid() == 0) {
            fs::copy_file(program, elsewhere);
            ASSERT_EQ(chown(elsewhere.c_str(), 1234, 1234), 0);
            mode(elsewhere, 0755);
            program = elsewhere;
            EXPECT_THAT(refusal(ofGroup), testing::HasSubstr("it belongs to user 1234"));
            const SelfInstaller forCaller{root.path(), {.caller = 1234, .callersGroup = 0}};
            EXPECT_EQ(failure(forCaller, program), "");
            EXPECT_TRUE(forCaller.verify(program));
            ASSERT_EQ(chown((root / libexec / "vespra-helper").c_str(), 1234, 0), 0);
            EXPECT_FALSE(forCaller.verify(program));
        }
    }

    TEST_F(SelfInstallerTest, AFailureLeavesWhatWasThereAndAKillNothingBroken)
    {
        constexpr int steps = 12; // six files and their directories
        EXPECT_FALSE(installer.install(home / "not there"));
        {
            const FileDescriptor other{::open(root.path().c_str(), O_RDONLY | O_CLOEXEC)};
            ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
            EXPECT_EQ(refusal(installer) + installer.uninstall().failures.at(0),
                "Another installation is under way.Another installation is under way.");
        }
        for (const bool isUpdate : {false, true})
            for (int step = 0; step < steps; ++step) {
                SCOPED_TRACE(std::to_string(isUpdate) + ", step " + std::to_string(step));
                putText(program, "former");
                EXPECT_TRUE(!isUpdate || installer.install(program));
                putText(program, "latter");
                syncFault = {step, [](int) { return errno = ENOSPC, -1; }};
                EXPECT_THAT(refusal(installer), testing::HasSubstr("No space left"));
                syncFault = {step, [](int descriptor) { return ftruncate(descriptor, 3), 0; }};
                if (step < steps / 2) {
                    EXPECT_THAT(refusal(installer), testing::HasSubstr("is not this program's"));
                }
                syncFault = {step, [](int) -> int { _exit(0); }};
                if (fork() == 0)
                    _exit(installer.install(program).has_value());
                int killed = -1;
                EXPECT_TRUE(wait(&killed) > 0 && killed == 0);
                syncFault = {};
                const auto runs = textOf(root / libexec / "vespra-helper");
                EXPECT_TRUE(
                    runs == "latter" || runs == (isUpdate ? std::optional<std::string>{"former"} : std::nullopt));
                EXPECT_EQ(failure(installer, program), "");
                for (const auto& [path, content] : tree())
                    EXPECT_FALSE(path.ends_with(".new") || path.ends_with(".old")) << path;
                EXPECT_TRUE(installer.uninstall().failures.empty());
            }
    }

    TEST_F(SelfInstallerTest, NeitherShadowsNorRemovesAPackage)
    {
        ASSERT_TRUE(installer.install(program));
        const auto alone = tree();
        for (const auto* path : {"usr/share/dbus-1/system.d/app.vespra.Helper.conf",
                 "usr/libexec/vespra-helper",
                 "usr/share/polkit-1/actions/app.vespra.Helper.policy",
                 "usr/lib/systemd/system/vespra-helper.service",
                 "usr/local/libexec/vespra-helper",
                 "var/lib/vespra-helper/sleep-override.json",
                 packagedActivation}) {
            ASSERT_FALSE(fs::exists(root / path));
            putText(root / path, "the package's");
        }
        EXPECT_THAT(refusal(installer), testing::StartsWith("A package has installed the helper"));
        EXPECT_TRUE(installer.verify("/dev/null"));
        auto packaged = tree();
        std::erase_if(packaged, [&](const auto& file) { return alone.contains(file.first) && !file.second.empty(); });
        EXPECT_EQ(installer.uninstall().failures.size() + installer.removeState().removed.size(), 0u);
        auto left = tree();
        std::erase_if(left, [](const auto& file) { return file.second.empty(); });
        std::erase_if(packaged, [](const auto& file) { return file.second.empty(); });
        EXPECT_EQ(left, packaged);
    }

} // namespace

} // namespace vespra

extern "C" int __wrap_fsync(int descriptor) // NOLINT(bugprone-reserved-identifier)
{
    return vespra::syncFault.after-- == 0 ? vespra::syncFault.happens(descriptor) : 0;
}
