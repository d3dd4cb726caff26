#include "App/System/linux/ProcessSoundPlayer.h"
#include "App/System/QtMainLoop.h"
#include "Host/Host.h"
#include "Tests/Support/QtApplication.h"
#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <fstream>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;
    using testing::SizeIs;

    /// Players are scripts in a folder of the test's, which note down what they are called with.
    class SoundPlayers : public testing::Test {
    protected:
        SoundPlayers() { setenv("PATH", (folder.path().string() + ":" + originalPath).c_str(), 1); }
        ~SoundPlayers() override { setenv("PATH", originalPath.c_str(), 1); }

        void writeExecutable(const std::string& name, const std::string& content) const
        {
            std::ofstream{folder / name} << content;
            permissions(folder / name, std::filesystem::perms::owner_all);
        }
        void write(const std::string& name, const std::string& script) const
        {
            const auto calls = (folder / "calls").string();
            writeExecutable(name, "#!/bin/sh\necho " + name + " \"$@\" >>" + calls + "\n" + script + "\n");
        }
        std::vector<std::string> lines(const char* name) const
        {
            std::ifstream file{folder / name};
            std::vector<std::string> all;
            for (std::string line; std::getline(file, line);)
                all.push_back(line);
            return all;
        }
        std::unique_ptr<ProcessSoundPlayer> player(std::vector<ProcessSoundPlayer::Program> programs)
        {
            return std::make_unique<ProcessSoundPlayer>(
                "/a b.wav", std::move(programs), mainLoop, SystemLog{"app", "test"});
        }
        /// Plays it to its end.
        void play(ProcessSoundPlayer& player)
        {
            bool hasEnded = false;
            player.play([&] { hasEnded = true; });
            EXPECT_FALSE(hasEnded) << "not in a later turn";
            QtApplication::runUntil([&] { return hasEnded; });
        }

        const std::string originalPath = getenv("PATH");
        const TemporaryDirectory folder;
        const QtApplication application;
        QtMainLoop mainLoop;
        RecordedLog log;
    };

} // namespace

TEST_F(SoundPlayers, AreTriedInOrderUntilOneSucceeds)
{
    write("vespra-fails", "exit 3");
    write("vespra-crashes", "kill -9 $$");
    write("vespra-plays", "exit 0");
    write("vespra-spare", "exit 0");
    writeExecutable("vespra-broken", "not a program");
    const auto sound = player({{"vespra-absent", {}},
        {"vespra-broken", {}},
        {"vespra-fails", {}},
        {"vespra-crashes", {}},
        {"vespra-plays", {"--file"}},
        {"vespra-spare", {}}});
    play(*sound);
    EXPECT_THAT(lines("calls"),
        ElementsAre("vespra-fails /a b.wav", "vespra-crashes /a b.wav", "vespra-plays --file /a b.wav"));
    EXPECT_THAT(log.messages, IsEmpty());
}

TEST_F(SoundPlayers, ThatCannotStartDoNotDisturbTheNextPlay)
{
    write("vespra-plays", "exit 0");
    writeExecutable("vespra-broken", "not a program");
    const auto sound = player({{"vespra-broken", {}}, {"vespra-plays", {}}});
    sound->play({});
    sound->stop();
    play(*sound);
    EXPECT_THAT(lines("calls"), SizeIs(1));
}

TEST_F(SoundPlayers, OfWhichNoneSucceedsAreLoggedOnce)
{
    write("vespra-fails", "exit 1");
    const auto sound = player({{"vespra-absent", {}}, {"vespra-fails", {}}});
    play(*sound);
    play(*sound);
    EXPECT_THAT(log.messages, ElementsAre("Alarme : aucun lecteur de sons n'a réussi (vespra-absent, vespra-fails)"));
    ProcessSoundPlayer missing{{}, {{"vespra-fails", {}}}, mainLoop, SystemLog{"app", "test"}};
    play(missing);
    EXPECT_THAT(lines("calls"), SizeIs(2));
    EXPECT_EQ(log.messages.back(), "Alarme : son introuvable");
}

TEST_F(SoundPlayers, AreKilledByStopByAnotherPlayAndWithTheirOwner)
{
    write("vespra-lasts", "echo $$ >>" + (folder / "pids").string() + "\nexec sleep 1000");
    auto sound = player({{"vespra-lasts", {}}});
    const auto isRunning = [&](std::size_t index) { return kill(std::stoi(lines("pids").at(index)), 0) == 0; };
    const auto waitForPlayer = [&](std::size_t count) {
        while (lines("pids").size() < count)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    };
    std::vector<std::string> told;
    sound->play([&] { told.emplace_back("first"); });
    waitForPlayer(1);
    sound->play([&] { told.emplace_back("second"); });
    waitForPlayer(2);
    QtApplication::runUntil([&] { return !isRunning(0); });
    EXPECT_THAT(told, ElementsAre("first"));
    sound->stop();
    sound->stop();
    QtApplication::runUntil([&] { return told.size() == 2 && !isRunning(1); });
    EXPECT_THAT(told, ElementsAre("first", "second"));
    sound->play([&] { told.emplace_back("third"); });
    waitForPlayer(3);
    sound.reset();
    EXPECT_FALSE(isRunning(2));
    QCoreApplication::processEvents();
    EXPECT_THAT(told, SizeIs(2));
    EXPECT_THAT(log.messages, IsEmpty()) << "a player that is stopped has not failed";
}

TEST_F(SoundPlayers, InheritNoDescriptors)
{
    const int leaked = open("/dev/null", O_RDONLY); // without close-on-exec
    write("vespra-looks", "ls -l /proc/$$/fd >" + (folder / "descriptors").string());
    play(*player({{"vespra-looks", {}}}));
    const auto listed = testing::PrintToString(lines("descriptors"));
    EXPECT_THAT(listed, testing::HasSubstr(" 0 -> /dev/null"));
    EXPECT_THAT(listed, testing::Not(testing::HasSubstr(" " + std::to_string(leaked) + " -> /dev/null")));
    close(leaked);
}

TEST(HeatAlarmSound, IsFoundInTheBuild)
{
    EXPECT_TRUE(resourceFile(heatAlarmSound));
    EXPECT_FALSE(resourceFile("sounds/other.wav"));
}

} // namespace vespra
