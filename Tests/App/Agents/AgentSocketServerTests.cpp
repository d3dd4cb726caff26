#include "App/Agents/AgentSocketServer.h"
#include "Core/Scheduling/ManualMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/DescriptorFamine.h"
#include "Tests/Support/LocalClient.h"
#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <ranges>
#include <thread>

using namespace vespra;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const Instant receipt = Instant::fromISO8601("2026-05-01T12:00:00Z").value();

std::string line(const std::string& id)
{
    return encoded({.agent = AgentKind::codex, .sessionID = id, .signal = AgentSignal::working, .date = Instant{}});
}

mode_t mode(const std::filesystem::path& path)
{
    struct stat file{};
    return lstat(path.c_str(), &file) == 0 ? file.st_mode & 07777 : 0;
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return Seconds{std::chrono::steady_clock::now() - start}.count();
}

/// How many are open now.
std::ptrdiff_t openDescriptors()
{
    return std::ranges::count_if(std::views::iota(0, 128), [](int each) { return fcntl(each, F_GETFD) >= 0; });
}

class AgentSocketServerTest : public testing::Test {
protected:
    std::unique_ptr<AgentSocketServer> started(const std::string& at)
    {
        auto server = std::make_unique<AgentSocketServer>(
            at, loop, clock, [this](const AgentEvent& event) { events.push_back(event); });
        server->start();
        return server;
    }
    std::unique_ptr<AgentSocketServer> started() { return started(path); }

    /// Sends a last event of its own and waits for it: connections are read one after the other.
    std::vector<std::string> idsOnceAllIsRead()
    {
        LocalClient{path}.write(line("end"));
        EXPECT_TRUE(loop.runUntil([this] { return !events.empty() && events.back().sessionID == "end"; }));
        std::vector<std::string> ids;
        ids.reserve(events.size());
        for (const auto& event : events) {
            ids.push_back(event.sessionID);
            EXPECT_EQ(event.date, receipt) << "not the agent's word";
        }
        if (!ids.empty())
            ids.pop_back();
        events.clear();
        return ids;
    }

    TemporaryDirectory directory;
    std::string path = directory / "agent.sock";
    ManualMainLoop loop;
    VirtualTime clock{receipt};
    std::vector<AgentEvent> events;
    RecordedLog log;
};

TEST_F(AgentSocketServerTest, DeliversTheGoodLinesOfAConnectionInOrder)
{
    const auto server = started();
    const auto a = line("a"), b = line("b");
    struct Row {
        const char* rule;
        std::string sent;
        std::vector<std::string> received;
    };
    for (const auto& row : std::vector<Row>{
             {"one with a final newline", a + "\n", {"a"}},
             {"one without", a, {"a"}},
             {"two and doubled newlines", a + "\n" + b + "\n\n", {"a", "b"}},
             {"leading and inner empty lines", "\n\n" + b + "\n\n\n" + a, {"b", "a"}},
             {"nothing", "", {}},
             {"only newlines", "\n\n\n", {}},
             {"garbage between", a + "\nnonsense\n{}\n\xff\xfe\n[1]\n" + b, {"a", "b"}},
             {"a client killed within a line", a + "\n" + b.substr(0, b.size() / 2), {"a"}},
         }) {
        SCOPED_TRACE(row.rule);
        LocalClient{path}.write(row.sent);
        EXPECT_EQ(idsOnceAllIsRead(), row.received);
    }
    EXPECT_THAT(log.messages, IsEmpty());
}

TEST_F(AgentSocketServerTest, ReadsAConnectionUpToItsLimit)
{
    const auto server = started();
    const auto kept = line("kept"), last = line("last");
    struct Row {
        const char* rule;
        std::size_t lastStartsAt, bytesAfter;
        std::vector<std::string> received;
    };
    for (const auto& row : std::vector<Row>{
             {"ends one byte below", 65'535 - last.size(), 0, {"kept", "last"}},
             {"ends at the limit, more follows", 65'536 - last.size(), 5'000, {"kept", "last"}},
             {"starts where no read can reach", 65'536 + 4'095, 0, {"kept"}},
             {"starts after 70 KB", 70'000, 100'000, {"kept"}},
         }) {
        SCOPED_TRACE(row.rule);
        auto sent = kept;
        sent.resize(row.lastStartsAt, '\n');
        LocalClient{path}.write(sent + last + std::string(row.bytesAfter, '\n'));
        EXPECT_EQ(idsOnceAllIsRead(), row.received);
    }
}

TEST_F(AgentSocketServerTest, WaitsForSlowClientsButOnlyASecondForSilentOnes)
{
    const auto server = started();
    LocalClient slow{path};
    for (const auto& piece : {line("slow").substr(0, 10), line("slow").substr(10), std::string{"\n"}}) {
        slow.write(piece);
        std::this_thread::sleep_for(400ms);
    }
    const auto silentFrom = std::chrono::steady_clock::now();
    LocalClient silent{path};
    silent.write(line("silent") + "\n");
    slow.finish();
    EXPECT_THAT(idsOnceAllIsRead(), ElementsAre("slow", "silent"));
    EXPECT_GE(secondsSince(silentFrom), 1.0);
    EXPECT_LT(secondsSince(silentFrom), 3.0);
}

TEST_F(AgentSocketServerTest, KeepsOtherUsersOutWhateverTheUmask)
{
    for (const mode_t mask : {0u, 022u, 0777u}) {
        const auto before = umask(mask);
        const auto folder = directory / std::to_string(mask);
        const auto server = started(folder / "inner" / "agent.sock");
        umask(before);
        EXPECT_TRUE(server->isListening());
        EXPECT_EQ(mode(folder), 0700u);
        EXPECT_EQ(mode(folder / "inner"), 0700u);
        EXPECT_EQ(mode(folder / "inner" / "agent.sock"), 0600u);
    }
    std::filesystem::create_directory(directory / "mine");
    chmod((directory / "mine").c_str(), 0755);
    started(directory / "mine" / "agent.sock");
    EXPECT_EQ(mode(directory / "mine"), 0755u) << "a directory that was there stays as it is";
}

TEST_F(AgentSocketServerTest, LogsWhyItCannotListen)
{
    const auto longest = (directory / std::string(103 - directory.path().native().size() - 1, 's')).native();
    ASSERT_EQ(longest.size(), 103u);
    std::filesystem::create_directories(directory / "occupied");
    std::ofstream{directory / "file"} << "kept";
    std::ofstream{path} << "left by an earlier run";
    const auto impossible
        = [](int reason) { return "Socket agents : écoute impossible (" + std::to_string(reason) + ")"; };
    struct Row {
        std::string path, message;
    };
    for (const auto& row : std::vector<Row>{
             {longest, ""},
             {path, ""},
             {longest + "s", "Socket agents : chemin trop long"},
             {directory / "occupied", impossible(EADDRINUSE)},
             {directory / "file" / "agent.sock", impossible(ENOTDIR)},
         }) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(started(row.path)->isListening(), row.message.empty());
        EXPECT_EQ(log.messages, row.message.empty() ? std::vector<std::string>{} : std::vector{row.message});
        log.messages.clear();
    }
    EXPECT_TRUE(std::filesystem::is_directory(directory / "occupied"));
    EXPECT_TRUE(std::filesystem::is_regular_file(directory / "file"));
    {
        const DescriptorFamine famine;
        EXPECT_FALSE(started()->isListening());
    }
    EXPECT_THAT(log.messages, ElementsAre("Socket agents : création impossible"));
}

TEST_F(AgentSocketServerTest, EndsAtOnceAndDeliversNothingAfterwards)
{
    auto server = started();
    LocalClient{path}.write(line("read"));
    LocalClient holding{path};
    holding.write(line("unfinished") + "\n");
    std::this_thread::sleep_for(200ms);
    const auto from = std::chrono::steady_clock::now();
    server.reset();
    EXPECT_LT(secondsSince(from), 0.5);
    EXPECT_EQ(loop.run(), 1) << "the first event was on its way";
    EXPECT_THAT(events, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(AgentSocketServerTest, TheCallbackMayEndTheServer)
{
    std::unique_ptr<AgentSocketServer> server;
    server = std::make_unique<AgentSocketServer>(path, loop, clock, [&](const AgentEvent& event) {
        server.reset();
        events.push_back(event);
    });
    server->start();
    LocalClient{path}.write(line("a") + "\n" + line("b"));
    ASSERT_TRUE(loop.runUntil([&] { return !events.empty(); }));
    loop.run();
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(AgentSocketServerTest, LeavesTheSocketFileOfANewerServer)
{
    auto older = started();
    const auto newer = started();
    older.reset();
    LocalClient{path}.write(line("a"));
    EXPECT_THAT(idsOnceAllIsRead(), ElementsAre("a"));
}

TEST_F(AgentSocketServerTest, SurvivesRunningOutOfDescriptors)
{
    const auto server = started();
    const auto atRest = openDescriptors();
    LocalClient{path}.write(line("before"));
    EXPECT_THAT(idsOnceAllIsRead(), ElementsAre("before"));
    for (int tries = 0; tries < 1000 && openDescriptors() > atRest; ++tries)
        std::this_thread::sleep_for(1ms);
    LocalClient first, second;
    const auto cpuBefore = std::clock();
    {
        const DescriptorFamine famine;
        for (auto* client : {&first, &second}) {
            ASSERT_TRUE(client->connect(path));
            client->write(line(client == &first ? "first" : "second"));
            client->finish();
        }
        std::this_thread::sleep_for(500ms);
        EXPECT_EQ(loop.run(), 0);
    }
    EXPECT_LT(std::clock() - cpuBefore, CLOCKS_PER_SEC / 10) << "it does not spin meanwhile";
    EXPECT_THAT(idsOnceAllIsRead(), ElementsAre("first", "second"));
}

} // namespace
