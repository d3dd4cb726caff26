#include "App/Wording/SystemText.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

using namespace vespra;
namespace fs = std::filesystem;

namespace {

struct Outcome {
    int status;
    std::string output; // standard output and standard error
};

Outcome vespractl(const fs::path& home, const std::string& arguments)
{
    const auto line = std::string{VESPRACTL} + " hooks --home '" + home.string() + "' " + arguments + " 2>&1";
    auto* stream = popen(line.c_str(), "r");
    EXPECT_TRUE(stream) << line;
    Outcome outcome{};
    std::array<char, 4096> piece;
    while (const auto count = std::fread(piece.data(), 1, piece.size(), stream))
        outcome.output.append(piece.data(), count);
    outcome.status = WEXITSTATUS(pclose(stream));
    return outcome;
}

TEST(HooksCommand, ConnectsAndDisconnectsWithoutTheApplication)
{
    const TemporaryDirectory home;
    fs::create_directory(home / ".claude");
    const auto status = [&] { return vespractl(home.path(), "status --json").output; };
    EXPECT_EQ(status(), "{\"claude\":\"notConnected\",\"codex\":\"agentNotFound\"}\n");

    EXPECT_EQ(vespractl(home.path(), "connect claude").status, 0);
    EXPECT_EQ(status(), "{\"claude\":\"connected\",\"codex\":\"agentNotFound\"}\n");
    EXPECT_TRUE(vespractl(home.path(), "status").output.contains("Claude Code  Connected"));

    EXPECT_EQ(vespractl(home.path(), "preview claude").output, textOf(home / ".claude/settings.json"));

    EXPECT_EQ(vespractl(home.path(), "disconnect claude").status, 0);
    EXPECT_FALSE(fs::exists(home / ".claude/settings.json"));
}

TEST(HooksCommand, SaysWhatWentWrong)
{
    const TemporaryDirectory home;
    putText(home / ".claude/settings.json", "{");
    const auto title = std::string{"vespractl: Couldn't change the agent's settings\n"};
    const auto absent = vespractl(home.path(), "connect codex");
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.output, title + std::string{systemText("This agent isn't installed on this Mac.")} + "\n");
    const auto unreadable = vespractl(home.path(), "disconnect claude");
    EXPECT_EQ(unreadable.status, 1);
    EXPECT_EQ(unreadable.output,
        title + "Its settings file couldn't be read, so it was left untouched. Fix the file, then try again.\n");
    for (const char* arguments : {"", "connect", "connect nobody", "status now", "preview claude codex"})
        EXPECT_EQ(vespractl(home.path(), arguments).status, 2) << arguments;
    EXPECT_EQ(vespractl(home / "none", "status").status, 2);
}

TEST(HooksCommand, KeepsOutOfAnotherUsersHome)
{
    const TemporaryDirectory given;
    const bool isRoot = geteuid() == 0;
    const auto home = isRoot ? given.path() : fs::path{"/"};
    if (isRoot) {
        ASSERT_EQ(chown(home.c_str(), 1234, 1234), 0);
    }
    const auto refused = vespractl(home, "connect codex");
    EXPECT_EQ(refused.status, 1);
    const auto user = isRoot ? "'#1234'" : "root";
    EXPECT_TRUE(refused.output.ends_with(
        std::string{"\n  sudo -u "} + user + " vespractl hooks connect codex --home '" + home.string() + "'\n"))
        << refused.output;
}

} // namespace
