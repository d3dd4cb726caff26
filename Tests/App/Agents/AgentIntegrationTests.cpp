#include "App/Agents/AgentIntegration.h"

#include "HelperProtocol/PropertyList.h"
#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace vespra;
using testing::ElementsAre;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace {

using CommandInstallation = AgentIntegration::CommandInstallation;

struct Home {
    TemporaryDirectory directory;
    fs::path tool = directory / "bundle-tool";
    fs::path support = directory / "Application Support/it's $HOME `x` \"Vespra\"";
    fs::path command = support / "vespra-agent";
    AgentIntegration integration{directory.path(), support};

    void writeTool(const std::string& script) const
    {
        putText(tool, script);
        fs::permissions(tool, fs::perms{0755});
    }
};

TEST(AgentIntegration, ConfiguresEachAgent)
{
    const AgentIntegration integration{"/home/someone", "/home/someone/.local/share/Vespra"};
    for (const auto& [kind, file, name] : std::vector<std::tuple<AgentKind, fs::path, std::string>>{
             {AgentKind::claudeCode, "/home/someone/.claude/settings.json", "claude"},
             {AgentKind::codex, "/home/someone/.codex/hooks.json", "codex"}}) {
        const auto hooks = integration.hookFile(kind);
        EXPECT_EQ(hooks.file, file);
        EXPECT_EQ(hooks.workDirectory, "/home/someone/.local/share/Vespra/hooks");
        EXPECT_EQ(hooks.name, name);
        EXPECT_EQ(hooks.installer.marker, "vespra-agent");
        // The events in their order, the command and the time limit.
        EXPECT_EQ(hooks.installer.preview(), textOf(VESPRA_HOOK_FILES "/empty." + name + ".installed"));
    }
}

TEST(HomeDirectory, IsThatOfThePasswordFileWithoutHOME)
{
    const std::string home = std::getenv("HOME");
    unsetenv("HOME");
    EXPECT_EQ(homeDirectory(), getpwuid(geteuid())->pw_dir);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(homeDirectory(), home);
}

TEST(AgentIntegration, TheHooksRunTheCopyOfTheToolWhateverTheFolderIsCalled)
{
    const Home home;
    const auto output = home.directory / "output";
    home.writeTool("#!/bin/sh\necho \"$1\" >'" + output.string() + "'\n");
    ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
    const auto command = home.integration.hookFile(AgentKind::codex).installer.command;
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    EXPECT_EQ(textOf(output), "codex\n");
}

TEST(AgentIntegration, ReplacesTheToolInOneStepAndOnlyWhenItDiffers)
{
    const Home home;
    const auto file = [&] {
        struct stat status{};
        EXPECT_EQ(stat(home.command.c_str(), &status), 0);
        return status.st_ino;
    };
    home.writeTool("#!/bin/sh\nexit 0\n");
    ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
    const auto first = file();
    ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
    EXPECT_EQ(file(), first);

    std::ifstream running{home.command};
    home.writeTool("#!/bin/sh\nexit 1 # longer\n");
    ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>{running}, {}), "#!/bin/sh\nexit 0\n");
    EXPECT_EQ(textOf(home.command), "#!/bin/sh\nexit 1 # longer\n");

    const std::string large(200'000, '#');
    home.writeTool(large);
    for (const auto& present : {large + '#', large.substr(1), large.substr(1) + '!', std::string{}}) {
        putText(home.command, present);
        ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
        EXPECT_EQ(textOf(home.command), large);
    }

    fs::permissions(home.command, fs::perms{0600});
    ASSERT_EQ(home.integration.installCommand(home.tool), CommandInstallation::inPlace);
    EXPECT_NE(fs::status(home.command).permissions() & fs::perms::owner_exec, fs::perms::none);
}

TEST(AgentIntegration, LogsWhyThereIsNoTool)
{
    const Home home;
    const RecordedLog log;
    EXPECT_EQ(home.integration.installCommand({}), CommandInstallation::notFound);
    EXPECT_EQ(home.integration.installCommand(home.directory.path()), CommandInstallation::notCopied);
    EXPECT_THAT(log.messages,
        ElementsAre(
            "Commande des hooks absente du bundle", StartsWith("Copie de la commande des hooks impossible : ")));
    EXPECT_FALSE(fs::exists(home.support));
}

} // namespace
