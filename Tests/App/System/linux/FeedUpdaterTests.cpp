#include "App/System/FeedUpdater.h"
#include "App/System/linux/LinuxUpdateTools.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Core/Updates/UpdateSchedule.h"
#include "Core/Updates/UpdateVersion.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/QtApplication.h"
#include "Tests/Support/TextFiles.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using namespace updateMessage;
    using testing::ElementsAre;

    const UpdateOffer two{.version = "2", .displayVersion = "2.0", .notes = "New", .length = 1};
    const UpdateState available = update::Available{"2.0", "New"}, downloaded = update::Available{"2.0", "New", true};

    /// Does as it is told; nothing runs and nothing is installed.
    struct FakeTools final : UpdateTools {
        struct Run final : UpdateRun {
            explicit Run(FakeTools& tools)
                : of{tools}
            {
            }
            ~Run() override { of.onMessage = nullptr; }
            FakeTools& of;
        };
        std::unique_ptr<UpdateRun> run(const std::vector<std::string>& arguments, const std::string&,
            std::function<void(const UpdateMessage&)> message, std::function<void()> end) override
        {
            auto run = std::make_unique<Run>(*this);
            runs.push_back(arguments.front());
            onMessage = std::move(message);
            onEnd = std::move(end);
            return run;
        }
        void open(const std::string& package, std::function<void(bool)> onDone) override
        {
            opened.push_back(package);
            onDone(opens);
        }

        std::vector<std::string> runs, opened;
        bool opens = true;
        std::function<void(const UpdateMessage&)> onMessage;
        std::function<void()> onEnd;
    };

    class FeedUpdaterTest : public BusTest {
    protected:
        /// A launch of the application.
        FeedUpdater& launch()
        {
            auto made = std::make_unique<FakeTools>();
            tools = made.get();
            auto& updater = updater_.emplace(FeedUpdater::Environment{.tools = std::move(made),
                .tasks = time,
                .clock = time,
                .record = folder / "support/updates.json",
                .folder = folder / "cache",
                .chance = [] { return 0.5; }});
            updater.onWillShowUpdate = [this](const std::string& version, bool isAskedFor) {
                shown.push_back(version + (isAskedFor ? " asked" : ""));
            };
            return updater;
        }
        void answer(const UpdateMessage& message)
        {
            tools->onMessage(message);
            tools->onEnd();
            time.advance(0s);
        }

        VirtualTime time;
        const TemporaryDirectory folder;
        FakeTools* tools = nullptr;
        std::vector<std::string> shown;

    private:
        std::optional<FeedUpdater> updater_;
    };

} // namespace

TEST(UpdateVersion, OrdersAsUsersReadThem)
{
    const std::vector<const char*> ascending{"",
        "0.9",
        "1.0a",
        "1.0b2",
        "1.0b10",
        "1.0rc1",
        "1.0",
        "1.0.0",
        "1.0.1",
        "1.9",
        "1.10",
        "2",
        "10",
        "2026.01.31",
        "99999999999999999999999",
        "100000000000000000000000"};
    for (std::size_t left = 0; left < ascending.size(); ++left)
        for (std::size_t right = 0; right < ascending.size(); ++right)
            EXPECT_EQ(compareVersions(ascending[left], ascending[right]), left <=> right)
                << ascending[left] << " and " << ascending[right];
    EXPECT_EQ(compareVersions("1.02-3", "1-2.3"), std::strong_ordering::equal);
}

TEST(UpdateSchedule, AsksOnceADayAndSpreadsTheQuestions)
{
    const Instant now = Instant{} + 1000h;
    struct Row {
        const char* rule;
        std::optional<Instant> last;
        int failures;
        double chance;
        Seconds expected;
    };
    for (const auto& [rule, last, failures, chance, expected] : std::vector<Row>{
             {"soon after the first start", {}, 0, 0.9, 2min},
             {"a day after the last answer", now - 1h, 0, 0, 23h},
             {"up to two hours later", now - 1h, 0, 0.5, 24h},
             {"a day that passed while it was off", now - 700h, 0, 0.5, 2min},
             {"just due", now - 25h, 0, 0.5, 2min},
             {"a clock that was set back", now + 900h, 0, 0, 24h},
             {"a failure", now - 100h, 1, 0, 1h},
             {"a failure, spread", {}, 1, 0.6, 63min},
             {"one more", now, 2, 0, 2h},
             {"at most a day", now, 999, 0, 24h},
         })
        EXPECT_NEAR(updateSchedule::untilNextCheck(now, last, failures, chance) / 1s, expected / 1s, 1e-6) << rule;
}

TEST_F(FeedUpdaterTest, LooksOnceADayAndKeepsWhatItFinds)
{
    auto* updater = &launch();
    time.advance(119s);
    EXPECT_THAT(tools->runs, ElementsAre());
    time.advance(1s);
    ASSERT_THAT(tools->runs, ElementsAre("check"));
    answer(Failed{UpdateFailure::untrusted, "tampered"});
    EXPECT_EQ(updater->state(), UpdateState{}) << "nobody asked";
    EXPECT_EQ(updater->lastCheck(), std::nullopt);
    time.advance(1h + 5min);
    ASSERT_EQ(tools->runs.size(), 2U);
    answer(two);
    EXPECT_EQ(updater->state(), available);
    EXPECT_THAT(shown, ElementsAre("2.0"));
    EXPECT_EQ(updater->lastCheck(), time.now());
    updater = &launch();
    time.advance(24h + 59min);
    EXPECT_THAT(tools->runs, ElementsAre()) << "it was kept when the last answer came";
    updater->setAutomaticallyChecks(false);
    updater = &launch();
    time.advance(1000h);
    EXPECT_THAT(tools->runs, ElementsAre());
    updater->setAutomaticallyChecks(true);
    time.advance(2min);
    EXPECT_THAT(tools->runs, ElementsAre("check"));
}

TEST_F(FeedUpdaterTest, SaysWhatBecameOfWhatTheUserAskedFor)
{
    auto& updater = launch();
    updater.checkForUpdates();
    EXPECT_EQ(updater.state(), (UpdateState{update::Checking{}}));
    updater.checkForUpdates();
    tools->onEnd(); // as if it had crashed
    time.advance(0s);
    EXPECT_EQ(updater.state(), (UpdateState{update::Failed{UpdateFailure::unreachable}}));
    for (const UpdateMessage& message :
        {UpdateMessage{Failed{UpdateFailure::tooLarge, ""}}, UpdateMessage{UpToDate{}}, UpdateMessage{two}}) {
        updater.checkForUpdates();
        answer(message);
    }
    EXPECT_EQ(updater.state(), available);
    EXPECT_THAT(shown, ElementsAre("2.0 asked"));
    updater.install();
    tools->onMessage(Progress{0.25});
    EXPECT_EQ(updater.state(), (UpdateState{update::Downloading{"2.0", 0.25}}));
    updater.cancel();
    EXPECT_EQ(updater.state(), available);
    EXPECT_FALSE(tools->onMessage) << "it is ended";
    updater.install();
    updater.checkForUpdates();
    answer(Failed{UpdateFailure::untrusted, ""});
    EXPECT_EQ(updater.state(), (UpdateState{update::Failed{UpdateFailure::untrusted}}));
    EXPECT_THAT(tools->opened, ElementsAre());

    const auto package = (folder / "package.deb").string();
    putText(package, "x");
    updater.setAutomaticallyInstalls(true);
    updater.checkForUpdates();
    answer(two);
    ASSERT_EQ(tools->runs.back(), "download") << "without being asked";
    answer(Package{package});
    EXPECT_EQ(updater.state(), downloaded);
    EXPECT_THAT(tools->opened, ElementsAre()) << "its windows come when the user wants them";
    updater.install();
    EXPECT_THAT(tools->opened, ElementsAre(package));
    tools->opens = false;
    updater.install();
    EXPECT_EQ(updater.state(), (UpdateState{update::Failed{UpdateFailure::notOpened}}));
    std::filesystem::remove(package);
    updater.install();
    EXPECT_EQ(tools->runs.back(), "download") << "it was cleared away";
}

TEST_F(FeedUpdaterTest, RunsItsProgramAndGivesPackagesToTheSystemsInstaller)
{
    putText(folder / "program", "#!/bin/sh\ncat >&2\necho '{\"type\":\"upToDate\"}'\necho nonsense\nexit 1\n");
    putText(folder / "opener", "#!/bin/sh\necho \"$1\" > \"$0.log\"\n");
    for (const auto* name : {"program", "opener"})
        std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    LinuxUpdateTools real{folder / "program", QString::fromStdString(folder / "opener")};
    int messages = 0;
    for (auto* each : {&real, static_cast<LinuxUpdateTools*>(nullptr)}) {
        LinuxUpdateTools missing{folder / "missing", "/missing"};
        bool hasEnded = false;
        const auto run
            = (each ? *each : missing)
                  .run({"check"}, "given", [&](const UpdateMessage&) { ++messages; }, [&] { hasEnded = true; });
        QtApplication::runUntil([&] { return hasEnded; });
    }
    EXPECT_EQ(messages, 1);
    const auto opens = [](LinuxUpdateTools& tools) {
        std::optional<bool> opened;
        tools.open("/p.deb", [&](bool done) { opened = done; });
        QtApplication::runUntil([&] { return opened.has_value(); });
        return *opened;
    };
    LinuxUpdateTools missing{folder / "program", "/missing"};
    EXPECT_FALSE(opens(missing));
    EXPECT_TRUE(opens(real));
    EXPECT_EQ(textOf(folder / "opener.log"), "/p.deb\n");
    bus().own("org.freedesktop.PackageKit");
    EXPECT_TRUE(opens(missing)) << "the desktop does it";
}

} // namespace vespra
