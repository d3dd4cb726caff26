#include "AgentTool/EventSender.h"
#include "AgentTool/HookInputReader.h"
#include "Core/Agents/AgentEvent.h"
#include "Core/Scheduling/WallClock.h"
#include "Tests/Support/LocalClient.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <gtest/gtest.h>
#include <thread>

using namespace vespra;

namespace {

const std::string stop = R"({"session_id":"s","cwd":"/p","hook_event_name":"Stop"})";

/// A "PostToolUse" of `size` bytes, nearly all of them under `key`.
std::string hookInput(std::size_t size, const std::string& key = "tool_response")
{
    const std::string head = R"({"session_id":"s","hook_event_name":"PostToolUse",")" + key + R"(":")", tail = "\"}";
    return head + std::string(size - head.size() - tail.size(), 'x') + tail;
}

/// The application's end: listens, and accepts only when asked.
class Application {
public:
    explicit Application(const std::string& path, int backlog = 16)
    {
        const auto address = unixSocket::address(path).value();
        if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
            || listen(listener_.get(), backlog) != 0)
            throw std::runtime_error{"cannot listen at " + path};
        unixSocket::setBlocking(listener_.get(), false);
    }
    /// What the next client that waits has written; absent if none waits.
    std::optional<std::string> received() const
    {
        const FileDescriptor connection{accept(listener_.get(), nullptr, nullptr)};
        if (!connection)
            return {};
        unixSocket::setBlocking(connection.get(), true);
        std::string text;
        char piece[4096];
        for (ssize_t count; (count = read(connection.get(), piece, sizeof piece)) > 0;)
            text.append(piece, static_cast<std::size_t>(count));
        return text;
    }

private:
    FileDescriptor listener_ = unixSocket::make();
};

enum class End { closed, leftOpen };

struct Outcome {
    int status; // as `waitpid` gives it: 0 is an exit with 0
    double seconds;
    std::string output;
    bool inputBroke; // writing it failed
};

class VespraAgentTest : public testing::Test {
protected:
    Outcome run(const std::string& input, End end = End::closed, std::vector<std::string> arguments = {"claude"},
        const std::vector<int>& closed = {}, const std::string& program = VESPRA_AGENT)
    {
        std::signal(SIGPIPE, SIG_IGN);
        int pipeEnds[2];
        EXPECT_EQ(receivesAtLeast ? socketpair(AF_UNIX, SOCK_STREAM, 0, pipeEnds) : pipe(pipeEnds), 0);
        if (receivesAtLeast)
            setsockopt(pipeEnds[0], SOL_SOCKET, SO_RCVLOWAT, &receivesAtLeast, sizeof receivesAtLeast);
        unixSocket::closeOnExec(pipeEnds[1]);
        FileDescriptor reader{pipeEnds[0]}, writer{pipeEnds[1]};
        const auto output = (directory / "output").native();

        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, reader.get(), 0);
        posix_spawn_file_actions_addclose(&actions, reader.get());
        posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        for (const int descriptor : closed)
            posix_spawn_file_actions_addclose(&actions, descriptor);
        arguments.insert(arguments.begin(), program);
        std::vector<char*> argv, envp;
        for (auto& argument : arguments)
            argv.push_back(argument.data());
        for (auto& variable : environment)
            envp.push_back(variable.data());
        argv.push_back(nullptr);
        envp.push_back(nullptr);

        Outcome result{};
        pid_t child = 0;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), envp.data()), 0);
        posix_spawn_file_actions_destroy(&actions);
        reader.reset();
        std::string_view rest = input;
        while (!rest.empty() && !result.inputBroke) {
            if (rest.size() == 1)
                std::this_thread::sleep_for(lateness);
            const auto count = write(writer.get(), rest.data(), lateness > 0s ? 1 : rest.size());
            result.inputBroke = count < 0;
            rest.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
        }
        if (end == End::closed)
            writer.reset();
        waitpid(child, &result.status, 0);
        result.seconds = Seconds{std::chrono::steady_clock::now() - start}.count();
        result.output = textOf(output).value();
        return result;
    }
    /// Checks what holds for every run.
    static void expectSilence(const Outcome& outcome)
    {
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "");
    }

    TemporaryDirectory directory;
    std::string path = directory / "agent.sock";
    std::chrono::milliseconds lateness{0}; // of the last byte; the others then come one by one
    int receivesAtLeast = 0; // bytes, before a read of the input returns: the input is a socket then
    std::vector<std::string> environment{"VESPRA_AGENT_SOCKET=" + path, "HOME=" + directory.path().native()};
};

TEST_F(VespraAgentTest, SendsTheEventOfEachAgent)
{
    const Application application{path};
    for (const auto agent : allAgentKinds) {
        const auto before = SystemClock{}.now();
        expectSilence(run(stop, End::closed, {std::string{rawValue(agent)}}));
        const auto text = application.received().value();
        ASSERT_TRUE(text.ends_with('\n'));
        const auto event = decodedAgentEvent(text).value();
        EXPECT_EQ(event, (AgentEvent{agent, "s", "/p", AgentSignal::finished, event.date}));
        EXPECT_GE(event.date + 1s, before);
        EXPECT_LE(event.date, SystemClock{}.now() + 1s);
    }
}

TEST_F(VespraAgentTest, DoesNotWaitForTheEndOfTheInput)
{
    const Application application{path};
    const auto complete = run(stop, End::leftOpen);
    expectSilence(complete);
    EXPECT_LT(complete.seconds, 0.5);
    EXPECT_TRUE(application.received());

    const auto partial = run(stop.substr(0, 20), End::leftOpen);
    expectSilence(partial);
    EXPECT_GE(partial.seconds, 0.9);
    EXPECT_LT(partial.seconds, 1.5);

    receivesAtLeast = 1000;
    const auto blocked = run(stop, End::leftOpen);
    expectSilence(blocked);
    EXPECT_LT(blocked.seconds, 2.5);
    EXPECT_FALSE(application.received());
}

TEST_F(VespraAgentTest, AcceptsSixteenMegabytesAndTakesButDropsMore)
{
    const Application application{path};
    constexpr auto limit = HookInputReader::sizeLimit;
    for (const std::size_t size : {std::size_t{700'000}, limit, limit + 1, std::size_t{20'000'000}}) {
        SCOPED_TRACE(size);
        const auto large = run(hookInput(size));
        expectSilence(large);
        EXPECT_FALSE(large.inputBroke) << "the agent could write everything";
        EXPECT_EQ(application.received().has_value(), size <= limit);
    }
}

TEST_F(VespraAgentTest, SaysNothingAndExitsWithZeroWhateverGoesWrong)
{
    const Application application{path};
    struct Row {
        const char* abuse;
        std::string input;
        std::vector<std::string> arguments;
        std::vector<int> closed;
        bool arrives = false;
    };
    for (const auto& row : std::vector<Row>{
             {"no argument", stop, {}, {}},
             {"a wrong argument", stop, {"Claude"}, {}},
             {"too many arguments", stop, {"claude", "codex"}, {}},
             {"an option", stop, {"--help"}, {}},
             {"no input", "", {"claude"}, {}},
             {"no JSON", "Stop", {"claude"}, {}},
             {"much that is no JSON", std::string(200'000, '}'), {"claude"}, {}},
             {"JSON that never ends", std::string(200'000, '{'), {"claude"}, {}},
             {"an event that says nothing", R"({"session_id":"s","hook_event_name":"PreToolUse"})", {"claude"}, {}},
             {"closed input", "", {"claude"}, {0}},
             {"closed outputs", stop, {"claude"}, {1, 2}, true},
             {"everything closed", "", {"claude"}, {0, 1, 2}},
         }) {
        SCOPED_TRACE(row.abuse);
        const auto abused = run(row.input, End::closed, row.arguments, row.closed);
        expectSilence(abused);
        EXPECT_FALSE(abused.inputBroke);
        EXPECT_LT(abused.seconds, 0.9);
        EXPECT_EQ(application.received().has_value(), row.arrives);
    }
}

TEST_F(VespraAgentTest, SaysNothingWhenTheApplicationCannotBeReached)
{
    putText(directory / "file", "");
    const auto folder = directory.path().native(), tooLong = folder + "/" + std::string(200, 'x');
    for (const auto& unreachable : {path, folder + "/file", folder, tooLong, std::string{"/nowhere/agent.sock"}}) {
        SCOPED_TRACE(unreachable);
        environment.front() = "VESPRA_AGENT_SOCKET=" + unreachable;
        const auto alone = run(stop);
        expectSilence(alone);
        EXPECT_LT(alone.seconds, 0.4);
    }
}

TEST_F(VespraAgentTest, WaitsHalfASecondForAnApplicationThatHangs)
{
    const Application application{path, 0};
    std::vector<LocalClient> waiting(8);
    for (auto& client : waiting) {
        unixSocket::setBlocking(client.descriptor(), false);
        client.connect(path); // until the backlog is full
    }
    const auto stuck = run(stop);
    expectSilence(stuck);
    EXPECT_GE(stuck.seconds, 0.45);
    EXPECT_LT(stuck.seconds, 0.9);

    lateness = 900ms;
    const auto lateAndStuck = run(stop);
    expectSilence(lateAndStuck);
    EXPECT_GE(lateAndStuck.seconds, 1.35);
    EXPECT_LT(lateAndStuck.seconds, 1.9);
    lateness = 0ms;

    std::thread wakesUp{[&] {
        std::this_thread::sleep_for(200ms);
        while (application.received() == "") {
        }
    }};
    waiting.clear();
    expectSilence(run(stop));
    wakesUp.join();
}

TEST_F(VespraAgentTest, TakesTheInputAlsoWithoutTheMemoryForIt)
{
    if (!VESPRA_CAN_LIMIT_MEMORY)
        GTEST_SKIP() << "needs a limit of address space, which sanitizers exceed and macOS does not have";
    const Application application{path};
    // The shell sets the limit, in kilobytes, for the program that takes its place.
    for (const std::string key : {"tool_response", "message"}) {
        const auto limited = run(hookInput(8'000'000, key),
            End::closed,
            {"-c", "ulimit -v 8192 && exec \"$0\" claude", VESPRA_AGENT},
            {},
            "/bin/sh");
        expectSilence(limited);
        EXPECT_FALSE(limited.inputBroke);
        EXPECT_EQ(application.received().has_value(), key == "tool_response") << "only what is wanted takes memory";
    }
}

TEST_F(VespraAgentTest, FindsTheSocketBesideItselfBeforeTheSupportFolder)
{
    for (const char* folder : {"data/Vespra", "beside"})
        std::filesystem::create_directories(directory / folder);
    const auto copy = (directory / "beside/vespra-agent").native();
    std::filesystem::copy_file(VESPRA_AGENT, copy);
    environment = {"HOME=/", "XDG_DATA_HOME=" + (directory / "data").native()};
    const Application supportFolder{directory / "data/Vespra/agent.sock"};
    expectSilence(run(stop, End::closed, {"claude"}, {}, copy));
    EXPECT_TRUE(supportFolder.received());

    const Application beside{directory / "beside/agent.sock"};
    expectSilence(run(stop, End::closed, {"claude"}, {}, copy));
    EXPECT_TRUE(beside.received());
    EXPECT_FALSE(supportFolder.received());
}

TEST_F(VespraAgentTest, SendsMoreThanTheSocketHoldsToASlowReaderAndGivesUpOnOneThatStops)
{
    const Application application{path};
    const std::string line(2'000'000, 'x');
    bool sent = false;
    std::thread sender{[&] { sent = sendLine(line, path); }};
    std::optional<std::string> text;
    while (!(text = application.received()))
        std::this_thread::sleep_for(1ms);
    sender.join();
    EXPECT_TRUE(sent);
    EXPECT_TRUE(*text == line + "\n");

    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(sendLine(line, path));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 450ms);
}

} // namespace
