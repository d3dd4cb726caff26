#include "Core/Agents/HookSettingsFile.h"

#include "Tests/Support/FaultyFiles.h"
#include "Tests/Support/HookExamples.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <sys/stat.h>
#include <unistd.h>

using namespace vespra;
namespace fs = std::filesystem;

namespace {

using Connection = HookSettingsFile::Connection;
using Failure = HookSettingsFile::Failure;

const auto morning = Instant::fromISO8601("2026-01-31T09:15:00Z").value();
const auto partlyOurs = R"({"model":"x","hooks":{"Stop":[{"hooks":[{"command":"vespra-agent"}]}]}})";

/// A home directory with Claude Code in it, and the settings file under test.
struct Home {
    TemporaryDirectory directory;
    fs::path file = directory / ".claude/settings.json";
    fs::path work = directory / "share/Vespra/hooks";

    explicit Home(const std::optional<std::string>& text = {})
    {
        fs::create_directory(directory / ".claude");
        if (text)
            write(*text);
    }
    HookSettingsFile settings(FileSystem& files = systemFiles()) const
    {
        return {.file = file,
            .installer = exampleInstaller(AgentKind::claudeCode),
            .workDirectory = work,
            .name = "claude",
            .files = &files};
    }
    std::string installed(const std::optional<std::string>& text) const
    {
        return settings().installer.installing(text).value();
    }

    void write(std::string_view text) const { putText(file, text); }
    std::optional<std::string> text() const { return textOf(file); }
    std::multiset<std::string> backups() const
    {
        std::multiset<std::string> texts;
        if (fs::exists(work / "backups"))
            for (const auto& entry : fs::directory_iterator{work / "backups"})
                texts.insert(textOf(entry).value());
        return texts;
    }
    bool hasBackup(const std::string& text) const { return backups().contains(text); }
    bool hasTemporaryFiles() const
    {
        return std::ranges::any_of(fs::recursive_directory_iterator{directory.path()},
            [](const auto& entry) { return entry.path().filename().string().contains(".vespra-"); });
    }
};

mode_t mode(const fs::path& path)
{
    struct stat status{};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST(HookSettingsFile, TellsHowTheAgentIsConnected)
{
    for (const auto& [text, expected] : std::vector<std::pair<std::optional<std::string>, Connection>>{
             {{}, Connection::notConnected},
             {"[]", Connection::notConnected},
             {"\xFF", Connection::notConnected},
             {"{", Connection::modified},
             {partlyOurs, Connection::modified},
             {exampleInstaller(AgentKind::claudeCode).preview(), Connection::connected},
         })
        EXPECT_EQ(Home{text}.settings().connection(), expected) << text.value_or("absent");
    const Home home;
    fs::remove(home.directory / ".claude");
    EXPECT_EQ(home.settings().connection(), Connection::agentNotFound);
    EXPECT_EQ(home.settings().connect(morning).error(), Failure::agentNotFound);
}

TEST(HookSettingsFile, DisconnectingAtOncePutsBackEveryByte)
{
    for (const auto& text :
        std::vector<std::optional<std::string>>{{}, "", "{ \"model\" : 1.50 }", "\t{\r\n}\r\n", R"({"hooks":{}})"}) {
        SCOPED_TRACE(text.value_or("absent"));
        const Home home{text};
        ASSERT_TRUE(home.settings().connect(morning));
        EXPECT_EQ(home.text(), home.installed(text));
        EXPECT_EQ(home.backups(), text ? std::multiset{*text} : std::multiset<std::string>{});

        const auto record = nlohmann::json::parse(textOf(home.work / "claude.json").value());
        EXPECT_EQ(record.contains("original"), text.has_value());
        EXPECT_EQ(record["written"], *home.text());

        ASSERT_TRUE(home.settings().disconnect(morning));
        EXPECT_FALSE(fs::exists(home.work / "claude.json"));
        const auto backups = home.backups();
        ASSERT_TRUE(home.settings().disconnect(morning)) << "what holds no hooks of ours";
        EXPECT_EQ(home.text(), text);
        EXPECT_EQ(home.backups(), backups);
    }
}

TEST(HookSettingsFile, DisconnectingKeepsWhatCameInBetweenAndNeverPutsHooksOfOursBack)
{
    for (const auto& [before, changesInBetween] : {std::pair{"{}\n", true}, {partlyOurs, true}, {partlyOurs, false}}) {
        SCOPED_TRACE(before);
        const Home home{before};
        ASSERT_TRUE(home.settings().connect(morning));
        if (changesInBetween)
            home.write(OrderedJSON::parse(home.text().value())->setting("model", "x").formatted());
        const auto changed = home.text().value();
        ASSERT_TRUE(home.settings().disconnect(morning));
        EXPECT_EQ(home.text(), "{\n  \"model\": \"x\"\n}");
        EXPECT_TRUE(home.hasBackup(changed));
    }
}

TEST(HookSettingsFile, LeavesAFileAloneThatItCannotUse)
{
    for (const std::string text : {"{", R"({"hooks":[]})", "{}\x80"}) {
        const Home home{text};
        EXPECT_EQ(home.settings().connect(morning).error(), Failure::unreadableSettings) << text;
        EXPECT_EQ(home.text(), text);
        EXPECT_TRUE(home.backups().empty());
    }
    const Home home;
    fs::create_directory(home.file);
    EXPECT_EQ(home.settings().connect(morning).error(), Failure::writeFailed);
    EXPECT_TRUE(home.settings().disconnect(morning));
    fs::remove(home.file);
    EXPECT_TRUE(home.settings().disconnect(morning)) << "a deleted file needs none";
    EXPECT_FALSE(fs::exists(home.file));
    ASSERT_EQ(mkfifo(home.file.c_str(), 0600), 0);
    EXPECT_EQ(home.settings().connect(morning).error(), Failure::writeFailed);
    EXPECT_TRUE(fs::is_fifo(home.file));
}

TEST(HookSettingsFile, KeepsEveryBackupOfOneSecond)
{
    const Home home;
    const std::multiset<std::string> texts{"{ }", "{\"a\":1}", "{\"a\":2}", ""};
    for (const auto& text : texts) {
        home.write(text);
        ASSERT_TRUE(home.settings().connect(morning));
        EXPECT_EQ(home.settings().connection(), Connection::connected);
    }
    EXPECT_EQ(home.backups(), texts);
    EXPECT_TRUE(fs::exists(home.work / "backups/claude-settings.json-2026-01-31T09-15-00Z"));
    EXPECT_TRUE(fs::exists(home.work / "backups/claude-settings.json-2026-01-31T09-15-00Z-4"));
}

TEST(HookSettingsFile, KeepsModeAndOwnerAndMakesItsOwnFilesPrivate)
{
    const Home home{"{}"};
    fs::permissions(home.file, fs::perms{0640});
    const bool isRoot = geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(chown(home.file.c_str(), 1234, 5678), 0);
    }
    for (const bool connects : {true, false}) {
        ASSERT_TRUE(connects ? home.settings().connect(morning) : home.settings().disconnect(morning));
        EXPECT_EQ(mode(home.file), 0640u);
        struct stat status{};
        ASSERT_EQ(stat(home.file.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, isRoot ? 1234 : geteuid());
        if (connects) {
            EXPECT_EQ(mode(home.work / "claude.json"), 0600u);
        }
    }
    for (const auto& entry : fs::directory_iterator{home.work / "backups"})
        EXPECT_EQ(mode(entry), 0600u);
    for (const char* directory : {"share", "share/Vespra", "share/Vespra/hooks", "share/Vespra/hooks/backups"})
        EXPECT_EQ(mode(home.directory / directory), 0700u) << directory;

    const Home empty;
    ASSERT_TRUE(empty.settings().connect(morning));
    EXPECT_EQ(mode(empty.file), 0600u);
}

TEST(HookSettingsFile, KeepsTheOwnerOfAFileWhoseGroupItCannotKeep)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a file to a group that its owner is not in";
    const Home home{"{}"};
    for (const auto& path : {home.directory.path(), home.directory / ".claude", home.file})
        ASSERT_EQ(chown(path.c_str(), 1234, 5678), 0);
    fs::permissions(home.file, fs::perms{0640});
    ASSERT_EQ(seteuid(1234), 0);
    const auto connected = home.settings().connect(morning);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_TRUE(connected);
    EXPECT_EQ(mode(home.file), 0640u);
}

TEST(HookSettingsFile, FollowsLinksAndLeavesThemLinks)
{
    for (const char* text : {"{}", static_cast<const char*>(nullptr)}) {
        const Home home;
        const auto target = home.directory / "dotfiles/claude/settings.json";
        putText(target, text ? text : "");
        if (!text)
            fs::remove(target);
        fs::create_symlink("claude/settings.json", home.directory / "dotfiles/link");
        fs::create_symlink(home.directory / "dotfiles/link", home.directory / ".claude/second");
        fs::create_symlink("../.claude/second", home.file);

        ASSERT_TRUE(home.settings().connect(morning));
        EXPECT_EQ(home.settings().connection(), Connection::connected);
        EXPECT_TRUE(fs::is_symlink(home.file) && fs::is_symlink(home.directory / "dotfiles/link"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
        ASSERT_TRUE(home.settings().disconnect(morning));
        EXPECT_EQ(textOf(target), text ? std::optional<std::string>{text} : std::nullopt);
        EXPECT_TRUE(fs::is_symlink(home.file));
    }
    const Home home;
    fs::create_symlink("settings.json", home.file);
    EXPECT_EQ(home.settings().connect(morning).error(), Failure::writeFailed);
}

TEST(HookSettingsFile, ComputesAgainWhatSomebodyElseChangedMeanwhile)
{
    for (const int most : {1, 2, 3}) {
        SCOPED_TRACE(most);
        const bool succeeds = most < 3;
        const Home home{"{}"};
        FaultyFiles files;
        int changes = 0;
        // Ours is about to take the file's place.
        files.afterSync = [&] {
            if (fs::exists(home.directory / ".claude/.settings.json.vespra-1") && changes < most)
                home.write("{\"change\":" + std::to_string(++changes) + "}");
        };
        const auto connected = home.settings(files).connect(morning);
        const auto theirs = "{\"change\":" + std::to_string(most) + "}";
        EXPECT_EQ(connected.has_value(), succeeds);
        EXPECT_EQ(home.text(), succeeds ? home.installed(theirs) : theirs);
        EXPECT_EQ(home.hasBackup(theirs), succeeds);
        EXPECT_FALSE(home.hasTemporaryFiles());
    }
}

TEST(HookSettingsFile, ConnectingSeveralTimesAtOnceKeepsTheRecord)
{
    // Another connects after each step of the first.
    for (int step = 0, isHit = true; isHit; ++step) {
        const Home home{"{ }"};
        FaultyFiles files;
        isHit = false;
        files.afterSync = [&, syncs = 0]() mutable {
            if (syncs++ == step)
                isHit = home.settings().connect(morning).has_value();
        };
        ASSERT_TRUE(home.settings(files).connect(morning));
        ASSERT_TRUE(home.settings().disconnect(morning));
        EXPECT_EQ(home.text(), "{ }") << "after " << step;
    }
}

struct Operation {
    const char* name;
    std::optional<std::string> text; // before connecting
    bool disconnects;
    bool changesInBetween;
};

/// The file is whole, the old or the new one, and what the user had in it is in it or in a backup.
void checkAfterFault(const Home& home, const std::optional<std::string>& before, const Operation& operation)
{
    const auto text = home.text();
    const bool isRestored = operation.disconnects && text == operation.text;
    if (text == before || isRestored)
        return;
    const auto& installer = home.settings().installer;
    EXPECT_EQ(text, operation.disconnects ? installer.uninstalling(*before).value() : home.installed(before));
    EXPECT_TRUE(!before || home.hasBackup(*before));
}

TEST(HookSettingsFile, SurvivesAFaultBeforeEveryStep)
{
    FaultyFiles healthy;
    const std::string model = "{\"model\": 1.50}\n";
    for (const auto& operation : std::vector<Operation>{
             {"connect", model, false, false},
             {"connect without a file", {}, false, false},
             {"connect what is partly ours", partlyOurs, false, false},
             {"restore", model, true, false},
             {"delete", {}, true, false},
             {"uninstall", model, true, true},
         })
        for (const auto fault : {FaultyFiles::Fault::failure, FaultyFiles::Fault::powerLoss})
            for (int step = 0, isHit = true; isHit; ++step) {
                SCOPED_TRACE(testing::Message() << operation.name << ", " << static_cast<int>(fault) << " at " << step);
                const Home home{operation.text};
                if (operation.disconnects) {
                    ASSERT_TRUE(home.settings(healthy).connect(morning));
                }
                if (operation.changesInBetween)
                    home.write("\n" + *home.text());
                const auto before = home.text();

                FaultyFiles files{fault, step};
                const auto settings = home.settings(files);
                const auto result = operation.disconnects ? settings.disconnect(morning) : settings.connect(morning);
                isHit = files.isHit();
                checkAfterFault(home, before, operation);
                if (!isHit) {
                    ASSERT_TRUE(result);
                }
                // What cannot be read counts as holding nothing of ours.
                const bool isRead = !operation.disconnects || step > 1;
                if (result && isRead) {
                    EXPECT_TRUE(home.text() != before);
                    EXPECT_TRUE(operation.disconnects || fs::exists(home.work / "claude.json"));
                    EXPECT_FALSE(files.hasUnsynced());
                }
                if (fault == FaultyFiles::Fault::failure) {
                    ASSERT_FALSE(home.hasTemporaryFiles());
                }

                // Whatever state that left, the way back is open.
                ASSERT_TRUE(home.settings(healthy).connect(morning));
                ASSERT_EQ(home.settings().connection(), Connection::connected);
                ASSERT_TRUE(home.settings(healthy).disconnect(morning));
                ASSERT_EQ(home.settings().connection(), Connection::notConnected);
                const auto users = home.settings().installer.uninstalling(operation.text.value_or("{}"));
                ASSERT_EQ(OrderedJSON::parse(home.text().value_or("{}")), OrderedJSON::parse(users.value()));
            }
}

} // namespace
