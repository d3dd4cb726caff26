// The application's side against the helper as a process, which the bus starts: on a private bus with stand-ins.

#include "App/System/ClosedLidController.h"
#include "App/System/linux/DBusHelperConnection.h"
#include "App/System/linux/LinuxHelper.h"
#include "App/System/linux/PolkitHelperService.h"
#include "App/System/linux/TimerfdScheduler.h"
#include "App/System/QtMainLoop.h"
#include "Tests/Support/FakeMonitors.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/TextFiles.h"

#include <algorithm>
#include <csignal>
#include <QCoreApplication>
#include <QDBusVirtualObject>
#include <QElapsedTimer>

namespace vespra {

namespace {

    template <class Condition> bool becomes(Condition condition, int limit = 5000) // milliseconds
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition() && timer.elapsed() < limit)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return condition();
    }

    class LinuxAdaptersTest : public BusTest {
    protected:
        LinuxAdaptersTest()
        {
            for (const char* service :
                {"org.freedesktop.login1", "org.freedesktop.PolicyKit1", "org.freedesktop.UPower"})
                bus().own(service);
            bus().makeActivatable("app.vespra.Helper", HELPER_UNDER_TEST " " + (state / "state").string() + " 2 60");
        }
        static bool isHeld() { return std::ranges::count(bus().held(), "sleep:handle-lid-switch:block") > 0; }
        /// Returns whether it ran.
        static bool killHelper()
        {
            const auto reply
                = dbus::systemBus().call(dbus::bus().method("GetConnectionUnixProcessID", {"app.vespra.Helper"}));
            const auto process = static_cast<pid_t>(reply.arguments().value(0).toUInt());
            return process > 0 && kill(process, SIGKILL) == 0;
        }

        void launch()
        {
            controller.emplace(coordinator,
                ClosedLidEnvironment{*helper.service, helper.connect, *helper.facts, *helper.power, tasks, mainLoop});
        }
        void startClosedLidSession()
        {
            ASSERT_TRUE(coordinator.start(plan::Unlimited{}, {.closedLid = true}));
            ASSERT_TRUE(becomes([this] { return coordinator.conditions().lidSleepDisabled; }));
            EXPECT_TRUE(isHeld());
        }
        void askToEnable(HelperXPCProtocol& connection)
        {
            reply.reset();
            connection.enableClosedLid([this](const auto& answer) { reply = answer; });
        }
        bool shows(HelperStatus status)
        {
            return becomes([&] { return coordinator.conditions().helper == status; });
        }

        static inline const TemporaryDirectory state; // of the helpers of all tests
        QtMainLoop mainLoop;
        TimerfdTaskScheduler tasks;
        TimerfdDeadlineScheduler deadlines;
        SystemClock clock;
        FakePowerSource source;
        FakeThermal thermal;
        SessionCoordinator coordinator{
            {}, Calendar::current(), {clock, deadlines, source, thermal}, helper::NotInstalled{}};
        PlatformHelper helper = makeLinuxHelper();
        std::optional<ClosedLidController> controller;
        std::optional<std::expected<HelperRefusal, HelperUnreachable>> reply;
    };

    /// In the helper's place: answers when the test says so.
    class StandIn final : public QDBusVirtualObject {
    public:
        explicit StandIn(const QString& service)
            : service_{service}
        {
            line_.registerVirtualObject("/app/vespra/Helper", this);
            takeName();
        }
        ~StandIn() override { QDBusConnection::disconnectFromBus("stand-in"); }
        bool takeName() { return line_.registerService(service_); }
        bool giveUpName() { return line_.unregisterService(service_); }
        void answer()
        {
            for (const auto& call : std::exchange(calls, {}))
                line_.send(call.createReply());
        }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override
        {
            calls.push_back(message);
            return true;
        }
        QString introspect(const QString&) const override { return {}; }
        std::vector<QDBusMessage> calls;

    private:
        QDBusConnection line_ = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "stand-in");
        QString service_;
    };

    // The first, for the helper itself would hold the name.
    TEST_F(LinuxAdaptersTest, AHelperThatGivesUpItsNameStillAnswersWhatItWasAsked)
    {
        StandIn standIn{"app.vespra.Helper"};
        const auto connection = helper.connect();
        bool isInvalid = false;
        connection->onInvalidation = [&] { isInvalid = true; };
        askToEnable(*connection);
        ASSERT_TRUE(becomes([&] { return !standIn.calls.empty(); }));
        ASSERT_TRUE(standIn.giveUpName());
        EXPECT_FALSE(becomes([&] { return isInvalid; }, 200));
        standIn.answer();
        EXPECT_TRUE(becomes([&] { return isInvalid; }));
        ASSERT_TRUE(reply && *reply);
        EXPECT_EQ(**reply, HelperRefusal{});
    }

    TEST_F(LinuxAdaptersTest, AClosedLidSessionHoldsTheLockUntilItsEndAndQuittingWaitsForThat)
    {
        launch();
        ASSERT_TRUE(shows(helper::Ready{}));
        startClosedLidSession();
        coordinator.stop(end::StoppedByUser{});
        EXPECT_TRUE(becomes([this] { return !coordinator.conditions().lidSleepDisabled; }));
        EXPECT_FALSE(isHeld());

        startClosedLidSession();
        ASSERT_TRUE(controller->isApplied());
        controller->restoreBeforeQuit(2s);
        EXPECT_FALSE(controller->isApplied());
        EXPECT_TRUE(becomes([] { return !isHeld(); }));
    }

    TEST_F(LinuxAdaptersTest, TheEndOfAConnectionLetsGoAndARefusalIsAnAnswer)
    {
        auto connection = helper.connect();
        askToEnable(*connection);
        ASSERT_TRUE(becomes([&] { return reply.has_value(); }));
        EXPECT_EQ(reply->value(), HelperRefusal{});
        EXPECT_TRUE(isHeld());
        connection.reset();
        EXPECT_TRUE(becomes([] { return !isHeld(); }));

        bus().set(R"({"polkit": "deny"})");
        connection = helper.connect();
        askToEnable(*connection);
        ASSERT_TRUE(becomes([&] { return reply.has_value(); }));
        EXPECT_EQ(reply->value(), HelperRefusal{"polkit ne l'autorise pas"});
    }

    TEST_F(LinuxAdaptersTest, ShowsWhatUPowerAndPolkitSay)
    {
        for (const auto& [machine, shown] : std::vector<std::pair<const char*, HelperStatus>>{
                 {R"({"hasLid": false})", helper::Unsupported{ClosedLidUnsupportedReason::noBuiltInDisplay}},
                 {R"({"hasLid": true, "polkit": "ask"})", helper::AwaitingApproval{}},
                 {R"({"polkit": "deny"})", helper::Failed{}},
                 {R"({"polkit": "broken"})", helper::Ready{}},
             }) {
            SCOPED_TRACE(machine);
            bus().set(machine);
            launch();
            EXPECT_TRUE(shows(shown));
        }
        bus().set(R"({"polkit": "password"})");
        launch();
        EXPECT_TRUE(shows(helper::AwaitingApproval{}));
        helper.service->openSettings();
        EXPECT_TRUE(shows(helper::Ready{})) << "although it counts only once";
        startClosedLidSession();
    }

    TEST_F(LinuxAdaptersTest, WhatHasLetGoOfTheLidIsNoticedAtOnceAndTheLockTakenAgain)
    {
        const auto restart = [] { return bus().restart(), true; };
        for (const auto& loseIt : std::vector<std::function<bool()>>{killHelper, restart}) {
            launch();
            ASSERT_TRUE(shows(helper::Ready{}));
            startClosedLidSession();
            ASSERT_TRUE(loseIt());
            EXPECT_TRUE(becomes([this] { return !coordinator.conditions().lidSleepDisabled; }, 3000));
            controller->refreshUnlessReady(); // the bus was away for a moment
            EXPECT_TRUE(becomes([this] { return coordinator.conditions().lidSleepDisabled; }));
            EXPECT_TRUE(isHeld());
            coordinator.stop(end::StoppedByUser{});
            EXPECT_TRUE(becomes([this] { return !coordinator.conditions().lidSleepDisabled; }));
        }
    }

    TEST_F(LinuxAdaptersTest, SleepsThroughLogindWithoutAskingForAPassword)
    {
        bool isDone = false;
        helper.power->sleepNow([&](const auto& result) { isDone = result.has_value(); });
        ASSERT_TRUE(becomes([&] { return isDone; }));
        const auto deeds = bus().deeds();
        EXPECT_TRUE(deeds.contains("Suspend") && deeds.contains("\"asks\": false")) << deeds.constData();
    }

    TEST_F(LinuxAdaptersTest, AHelperOtherThanTheApplicationsIsReplacedByTheApplicationsOwn)
    {
        const TemporaryDirectory folder;
        const auto own = folder / "own", installed = folder / "installed", package = folder / "package";
        putText(own, "#!/bin/sh\n[ \"$1\" = --verify ] && exec cmp -s \"$0\" " + installed.string());
        putText(folder / "pkexec", "#!/bin/sh\n[ \"$2\" = --install ] && exec cp \"$1\" " + installed.string());
        for (const auto& program : {own, folder / "pkexec"})
            std::filesystem::permissions(program, std::filesystem::perms{0755});
        qputenv("PATH", QByteArray::fromStdString(folder.path()) + ':' + qgetenv("PATH"));
        PolkitHelperService service{
            {QString::fromStdString(own), QString::fromStdString(installed), QString::fromStdString(package)}};
        const auto status = [&] {
            std::optional<HelperServiceStatus> said;
            service.status([&](HelperServiceStatus answer) { said = answer; });
            EXPECT_TRUE(becomes([&] { return said.has_value(); }));
            return said.value_or(HelperServiceStatus::unknown);
        };
        const auto isSetUp = [&] {
            std::vector<bool> succeeded; // whoever asks twice waits for one installation
            for (int times = 0; times < 2; ++times)
                service.registerService([&](const auto& result) { succeeded.push_back(result.has_value()); });
            return becomes([&] { return succeeded.size() == 2; }) && std::ranges::count(succeeded, true) > 0;
        };
        EXPECT_EQ(status(), HelperServiceStatus::enabled) << "installed by other means";
        for (auto stale : {std::string{"older"}, std::string(textOf(own)->size(), 'x')}) {
            putText(installed, stale);
            putText(package, "");
            EXPECT_EQ(status(), HelperServiceStatus::enabled);
            std::filesystem::remove(package);
            EXPECT_EQ(status(), HelperServiceStatus::notRegistered);
            EXPECT_TRUE(isSetUp());
            EXPECT_EQ(textOf(installed), textOf(own));
            EXPECT_EQ(status(), HelperServiceStatus::enabled);
        }
        std::filesystem::remove(folder / "pkexec");
        EXPECT_TRUE(isSetUp()) << "asks nobody for what is in place";
        putText(own, "#!/bin/sh\nexit 1\n");
        std::filesystem::copy_file(own, installed, std::filesystem::copy_options::overwrite_existing);
        EXPECT_FALSE(isSetUp()) << "repairs what is not";
    }

} // namespace

} // namespace vespra
