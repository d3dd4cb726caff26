#include "Helper/HelperDaemon.h"

#include "Tests/Helper/FakeMachine.h"

#include <gmock/gmock.h>
#include <random>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;
    using Reason = Authorization::Denial::Reason;

    class HelperDaemonTest : public testing::Test {
    protected:
        HelperDaemonTest()
        {
            SystemLog::redirect([](const SystemLog::Entry&) { });
        }
        ~HelperDaemonTest() override
        {
            machine.revive(); // it cannot die in a destructor
            end();
            SystemLog::redirect({});
        }

        void start()
        {
            daemon.emplace(machine.parts(time));
            daemon->onChange = [this] { isToldIdle = daemon->isIdle(); };
            isToldIdle = daemon->isIdle();
            session = daemon->clientSession("a");
            other = daemon->clientSession("b");
        }
        void startEnabled()
        {
            start();
            EXPECT_EQ(enable(*session), std::nullopt);
        }
        /// As a process that was killed, if it was; as one that ends in order otherwise.
        void end()
        {
            session.reset();
            other.reset();
            daemon.reset();
            machine.revive();
        }

        using Client = HelperXPCProtocol;
        static HelperRefusal ask(Client& client, void (Client::*request)(HelperReply<HelperRefusal>))
        {
            HelperRefusal refusal{"no reply"};
            (client.*request)([&](auto reply) { refusal = *reply; });
            return refusal;
        }
        static HelperRefusal enable(Client& client) { return ask(client, &Client::enableClosedLid); }
        static HelperRefusal restore(Client& client) { return ask(client, &Client::restoreSleep); }
        static bool heartbeat(Client& client)
        {
            bool isInForce = false;
            client.heartbeat([&](auto reply) { isInForce = *reply; });
            return isInForce;
        }

        VirtualTime time{Instant::fromReferenceDate(1h)};
        FakeMachine machine;
        std::optional<HelperDaemon> daemon;
        std::unique_ptr<HelperXPCProtocol> session, other;
        bool isToldIdle = false; // what whoever follows `onChange` takes `isIdle` for
    };

    TEST_F(HelperDaemonTest, RecoversFromRecordsAndGarbageAlsoWhenKilledMeanwhile)
    {
        for (const bool isGarbage : {false, true})
            for (int changes = 0; changes <= 1; ++changes) {
                machine.isDisabled = machine.isLidShut = true;
                machine.isDiskGarbage = isGarbage;
                machine.disk = SleepOverrideRecord{.originalSleepDisabled = false};
                machine.killAfter(changes);
                EXPECT_THROW(start(), Killed);
                EXPECT_EQ(machine.isDisabled, changes == 0) << "the file goes last";
                end();
                start();
                EXPECT_FALSE(machine.isDisabled || machine.isDiskGarbage);
                time.advance(HelperXPC::heartbeatInterval + 1s);
                EXPECT_THAT(machine.deeds, IsEmpty()) << "an application can come back";
                time.advance(5s);
                EXPECT_THAT(std::exchange(machine.deeds, {}), ElementsAre("suspend"));
                EXPECT_EQ(enable(*session), std::nullopt);
                end();
                EXPECT_EQ(machine.disk, std::nullopt);
            }
    }

    TEST_F(HelperDaemonTest, ALeaseLivesFor25SecondsAfterItsLastRenewal)
    {
        start();
        EXPECT_FALSE(heartbeat(*session));
        EXPECT_EQ(enable(*session), std::nullopt);
        time.advance(24.9s);
        EXPECT_TRUE(heartbeat(*session));
        time.advance(24.9s);
        EXPECT_TRUE(machine.isDisabled);
        time.advance(0.1s);
        EXPECT_FALSE(machine.isDisabled);
        EXPECT_EQ(machine.disk, std::nullopt);
        EXPECT_FALSE(heartbeat(*session));
    }

    TEST_F(HelperDaemonTest, ALeaseThatRanOutInSleepIsGoneWhicheverComesFirstAtTheWakeUp)
    {
        for (const Seconds due : {24s, 26s}) {
            startEnabled();
            std::optional<bool> isInForce;
            const auto call = time.schedule(due, [&] { isInForce = heartbeat(*session); });
            time.sleep(1h);
            EXPECT_EQ(isInForce, false);
            EXPECT_FALSE(machine.isDisabled);
            end();
        }
    }

    TEST_F(HelperDaemonTest, ALeaseThatRanOutInSleepAndIsTakenAgainAtOnceKeepsAShutLidAwake)
    {
        machine.isLidShut = machine.isSettingForUsersOnly = true;
        startEnabled();
        const auto call = time.schedule(24s, [&] { EXPECT_EQ(enable(*session), std::nullopt); });
        time.sleep(1h);
        time.advance(20s);
        EXPECT_TRUE(machine.isDisabled);
        EXPECT_THAT(machine.deeds, IsEmpty());
    }

    TEST_F(HelperDaemonTest, TriesAgainUntilTheSettingIsBack)
    {
        startEnabled();
        machine.isSettingStuck = true;
        EXPECT_EQ(restore(*session), HelperRefusal{"le réglage ne répond pas"});
        time.advance(1h);
        EXPECT_TRUE(machine.isDisabled);
        EXPECT_TRUE(machine.disk) << "as long as it is owed, it is on the disk";
        EXPECT_FALSE(daemon->isIdle());
        machine.isSettingStuck = false;
        time.advance(OverrideLeases::retryInterval);
        EXPECT_FALSE(machine.isDisabled || machine.disk);
        time.advance(ShutLidSleep::firstLook);
        EXPECT_TRUE(daemon->isIdle());
    }

    TEST_F(HelperDaemonTest, WhateverIsRefusedLeavesNothingBehind)
    {
        for (const auto& [refusal, cause] : std::vector<std::pair<std::string, std::function<void()>>>{
                 {"disque plein", [&] { machine.isDiskWritable = false; }},
                 {"le réglage ne répond pas", [&] { machine.isSettingStuck = true; }},
                 {"pas autorisé", [&] { machine.denial = Reason::denied; }},
             }) {
            SCOPED_TRACE(refusal);
            start();
            cause();
            EXPECT_EQ(enable(*session), refusal);
            EXPECT_FALSE(machine.isDisabled || heartbeat(*session));
            machine.isDiskWritable = true;
            machine.isSettingStuck = false;
            time.advance(OverrideLeases::retryInterval);
            EXPECT_FALSE(machine.isDisabled || machine.disk);
            EXPECT_TRUE(daemon->isIdle());
            if (!machine.denial)
                continue;
            for (const auto request : {&Client::sleepNow, &Client::shutDown})
                EXPECT_EQ(ask(*session, request), refusal);
            EXPECT_THAT(machine.deeds, IsEmpty());
        }
    }

    TEST_F(HelperDaemonTest, AnAuthorizationThatComesTooLateChangesNothing)
    {
        for (const bool clientGoes : {true, false}) {
            SCOPED_TRACE(clientGoes ? "the client has gone" : "the client has asked to restore");
            start();
            machine.asksTheUser = true;
            session->enableClosedLid([](auto) { });
            EXPECT_FALSE(daemon->isIdle()) << "somebody is typing a password";
            if (clientGoes)
                session.reset();
            else
                restore(*session);
            ASSERT_EQ(machine.asked.size(), 1u);
            machine.asked.front()();
            EXPECT_FALSE(machine.isDisabled || machine.disk);
            end();
        }
    }

    TEST_F(HelperDaemonTest, LetsGoBeforeSleepAndAfterShutdownUnlessItIsRefused)
    {
        machine.isLidShut = true;
        for (const auto request : {&Client::sleepNow, &Client::shutDown}) {
            startEnabled();
            enable(*other);
            machine.blocker = "dpkg";
            EXPECT_EQ(ask(*session, request), HelperRefusal{"dpkg"});
            EXPECT_TRUE(machine.isDisabled && heartbeat(*session) && heartbeat(*other));
            machine.blocker.clear();
            EXPECT_EQ(ask(*session, request), std::nullopt);
            EXPECT_FALSE(machine.isDisabled || machine.disk);
            EXPECT_FALSE(heartbeat(*other));
            if (machine.deeds.back() == "suspend")
                daemon->systemWillSleep();
            time.advance(1min);
            end();
        }
        EXPECT_THAT(machine.deeds, ElementsAre("suspend", "powerOff while kept awake"));
    }

    TEST_F(HelperDaemonTest, LooksAtTheRightAgainAtEachHeartbeat)
    {
        struct Row {
            const char* what;
            std::optional<Reason> atFirst, later;
            bool expected, isRenewed;
        };
        for (const auto& row : std::vector<Row>{
                 {"no longer there", {}, Reason::denied, false, false},
                 {"a person would be needed now", {}, Reason::needsAuthentication, false, false},
                 {"a person was needed", Reason::needsAuthentication, Reason::needsAuthentication, true, true},
                 {"a person's right is taken away", Reason::needsAuthentication, Reason::denied, false, false},
                 {"nobody can say", {}, Reason::unanswered, true, false},
             }) {
            SCOPED_TRACE(row.what);
            machine.denial = row.atFirst;
            startEnabled();
            machine.denial = {};
            enable(*other);
            time.advance(20s);
            EXPECT_TRUE(heartbeat(*other));
            machine.denial = row.later;
            EXPECT_EQ(heartbeat(*session), row.expected);
            machine.denial = {};
            EXPECT_TRUE(heartbeat(*other)) << "it has a right of its own";
            time.advance(10s);
            EXPECT_EQ(heartbeat(*session), row.isRenewed);
            end();
        }
    }

    TEST_F(HelperDaemonTest, ARenewalCountsFromItsRequest)
    {
        startEnabled();
        machine.asksTheUser = true;
        session->heartbeat([](auto) { });
        time.advance(20s);
        machine.asked.front()();
        time.advance(5s);
        EXPECT_FALSE(machine.isDisabled);
    }

    TEST_F(HelperDaemonTest, ASleepThatIsRefusedAtFirstIsTriedAgain)
    {
        start();
        machine.isDisabled = true; // somebody else's
        std::vector<HelperRefusal> refusals;
        const auto note = [&](auto reply) { refusals.push_back(*reply); };
        session->sleepNow(note);
        time.advance(1.5s);
        other->sleepNow(note);
        EXPECT_THAT(refusals, ElementsAre(HelperRefusal{"une mise en veille est déjà en cours"}));
        time.advance(1s);
        machine.isDisabled = false;
        time.advance(10s);
        EXPECT_THAT(refusals, ElementsAre(testing::_, HelperRefusal{}));
        EXPECT_THAT(machine.deeds, ElementsAre("suspend"));

        machine.isDisabled = true;
        session->sleepNow(note);
        machine.isDisabled = false;
        time.sleep(1h); // at the shut lid's instance
        EXPECT_EQ(refusals.size(), 3u);
        EXPECT_EQ(machine.deeds.size(), 1u) << "whoever opens the lid is not sent to sleep again";

        machine.isDisabled = true;
        session->sleepNow(note);
        enable(*other);
        time.advance(10s);
        EXPECT_TRUE(heartbeat(*other)) << "it was asked for later";
        EXPECT_TRUE(refusals.back());
    }

    TEST_F(HelperDaemonTest, AsksForSleepWhileTheLidStaysShut)
    {
        struct Row {
            const char* what;
            std::function<void()> meanwhile;
            std::size_t expected;
        };
        for (const auto& row : std::vector<Row>{
                 {"nothing happens", [] {}, 6},
                 {"it is not heard for an hour",
                     [&] {
                         time.advance(1h);
                         EXPECT_TRUE(daemon->isIdle() && time.pendingTasks() == 0);
                     },
                     std::size_t{ShutLidSleep::mostLooks}},
                 {"the lid opens", [&] { machine.isLidShut = false; }, 1},
                 {"it sleeps, and is woken with its lid shut", [&] { time.sleep(1h); }, 1},
                 {"the system is about to sleep", [&] { daemon->systemWillSleep(); }, 1},
                 {"closed-lid mode again", [&] { enable(*session); }, 1},
             }) {
            SCOPED_TRACE(row.what);
            machine.deeds.clear();
            machine.isLidShut = true;
            startEnabled();
            restore(*session);
            time.advance(ShutLidSleep::firstLook + 1s);
            row.meanwhile();
            EXPECT_EQ(isToldIdle, daemon->isIdle());
            time.advance(24s);
            EXPECT_EQ(machine.deeds.size(), row.expected);
            end();
        }
    }

    /// What two clients, kills and time do in any order, on any disk: the override never outlives the last sign of life
    /// by more than the lease, and the original is never lost.
    TEST_F(HelperDaemonTest, KeepsItsPromiseInAnyOrderOfEvents)
    {
        for (unsigned seed = 0; seed < 1000; ++seed) {
            SCOPED_TRACE(testing::Message() << "seed " << seed);
            std::mt19937 random{seed};
            const auto pick = [&](int count) { return std::uniform_int_distribution{0, count - 1}(random); };
            const bool original = pick(2);
            machine.isDisabled = original;
            machine.delay = std::array<Seconds, 4>{0s, 20ms, 100ms, 1s}[seed % 4];
            start();
            auto lastSign = time.continuousNow();
            const auto step = [&] {
                auto& client = *(pick(2) ? session : other);
                const auto asked = time.continuousNow();
                switch (pick(8)) {
                case 0:
                case 1:
                    if (!enable(client))
                        lastSign = asked;
                    break;
                case 2:
                    if (heartbeat(client))
                        lastSign = asked;
                    break;
                case 3:
                    restore(client);
                    break;
                case 4:
                    machine.killAfter(1000); // the test cannot die in a destructor
                    session = nullptr;
                    session = daemon->clientSession("a");
                    break;
                case 5:
                    time.sleep(Seconds(pick(40)));
                    break;
                default:
                    time.advance(Seconds(pick(30)) / 2);
                }
            };
            for (int events = 0; events < 40; ++events) {
                machine.isDiskWritable = pick(8) != 0;
                machine.isLidShut = pick(2);
                if (pick(6) == 0)
                    machine.killAfter(pick(3));
                try {
                    step();
                } catch (const Killed&) {
                    machine.isDiskWritable = true;
                    end();
                    start();
                    ASSERT_EQ(machine.isDisabled, original);
                }
                ASSERT_EQ(isToldIdle, daemon->isIdle());
                if (machine.isDisabled == original)
                    continue;
                ASSERT_LT(time.continuousNow() - lastSign, 25s + 1s);
                ASSERT_FALSE(daemon->isIdle());
                ASSERT_EQ(machine.disk->originalSleepDisabled, original);
            }
            machine.revive();
            machine.isDiskWritable = true;
            time.advance(1min);
            ASSERT_EQ(machine.isDisabled, original);
            ASSERT_EQ(machine.disk, std::nullopt);
            end();
        }
    }

} // namespace

} // namespace vespra
