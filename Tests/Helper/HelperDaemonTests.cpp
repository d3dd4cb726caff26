#include "Helper/HelperDaemon.h"

#include "Tests/Helper/FakeMachine.h"
#include "Tests/Support/Courses.h"

#include <random>

namespace vespra {

namespace {

    using Reason = Authorization::Denial::Reason;
    using Client = HelperXPCProtocol;

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
        /// As a process that was killed, if it was; as one that ends in order otherwise.
        void end()
        {
            session.reset();
            other.reset();
            daemon.reset();
            machine.revive();
        }
        void startToBeKilled(int afterChanges)
        {
            machine.killAfter(afterChanges);
            EXPECT_THROW(start(), Killed);
            end();
        }

        /// Whether it is done, as far as the answer comes at once.
        bool asks(Client& client, void (Client::*request)(HelperReply<HelperRefusal>))
        {
            (client.*request)(
                [this](const auto& reply) { note(*reply ? "\"" + **reply + "\"" : std::string{"done"}); });
            return replies.ends_with("done ");
        }
        bool enable(Client& client) { return asks(client, &Client::enableClosedLid); }
        bool restore(Client& client) { return asks(client, &Client::restoreSleep); }
        bool heartbeat(Client& client)
        {
            client.heartbeat([this](const auto& reply) { note(*reply ? "alive" : "gone"); });
            return replies.ends_with("alive ");
        }
        void note(const std::string& reply) { replies += reply + " "; }

        void does(const std::string& word)
        {
            const auto action = actions.find(word);
            action == actions.end() ? time.advance(Seconds{std::stod(word)}) : action->second();
        }
        /// The replies, what the machine was made to do, the setting, and what lies on the disk.
        std::string seen()
        {
            auto text = std::exchange(replies, {});
            for (const auto& deed : std::exchange(machine.deeds, {}))
                text += deed + " ";
            text += machine.isDisabled ? "| awake" : "| sleeps";
            text += machine.isDiskGarbage ? ", garbage" : machine.disk ? ", recorded" : "";
            if (!daemon)
                return text;
            EXPECT_EQ(isToldIdle, daemon->isIdle());
            return text + (daemon->isIdle() ? time.pendingTasks() == 0 ? ", idle" : ", idle, yet with tasks" : "");
        }

        VirtualTime time{Instant::fromReferenceDate(1h)};
        FakeMachine machine;
        std::optional<HelperDaemon> daemon;
        std::unique_ptr<Client> session, other;
        bool isToldIdle = false; // what whoever follows `onChange` takes `isIdle` for
        std::string replies;
        std::vector<std::unique_ptr<ScheduledTask>> later;
        const std::map<std::string, std::function<void()>> actions{
            {"start", [this] { start(); }},
            {"end", [this] { end(); }},
            {"startToBeKilledAtOnce", [this] { startToBeKilled(0); }},
            {"startToBeKilledAfterOneChange", [this] { startToBeKilled(1); }},
            {"enable", [this] { enable(*session); }},
            {"enableOther", [this] { enable(*other); }},
            {"heartbeat", [this] { heartbeat(*session); }},
            {"heartbeatOther", [this] { heartbeat(*other); }},
            {"restore", [this] { restore(*session); }},
            {"sleepNow", [this] { asks(*session, &Client::sleepNow); }},
            {"sleepNowOther", [this] { asks(*other, &Client::sleepNow); }},
            {"shutDown", [this] { asks(*session, &Client::shutDown); }},
            {"clientGoes", [this] { session.reset(); }},
            {"in24sHeartbeat", [this] { later.push_back(time.schedule(24s, [this] { heartbeat(*session); })); }},
            {"in26sHeartbeat", [this] { later.push_back(time.schedule(26s, [this] { heartbeat(*session); })); }},
            {"in24sEnable", [this] { later.push_back(time.schedule(24s, [this] { enable(*session); })); }},
            {"sleepFor1h", [this] { time.sleep(1h); }},
            {"systemWillSleep", [this] { daemon->systemWillSleep(); }},
            {"leaveRecord", [this] { machine.disk = SleepOverrideRecord{}, machine.isDisabled = true; }},
            {"leaveGarbage", [this] { machine.isDiskGarbage = true; }},
            {"diskFull", [this] { machine.isDiskWritable = false; }},
            {"settingStuck", [this] { machine.isSettingStuck = true; }},
            {"repair", [this] { machine.isDiskWritable = true, machine.isSettingStuck = false; }},
            {"somebodyKeepsAwake", [this] { machine.isDisabled = true; }},
            {"somebodyLetsGo", [this] { machine.isDisabled = false; }},
            {"settingForUsersOnly", [this] { machine.isSettingForUsersOnly = true; }},
            {"lidShut", [this] { machine.isLidShut = true; }},
            {"lidOpen", [this] { machine.isLidShut = false; }},
            {"dpkgBlocks", [this] { machine.blocker = "dpkg"; }},
            {"nothingBlocks", [this] { machine.blocker.clear(); }},
            {"allowed", [this] { machine.denial = {}; }},
            {"denied", [this] { machine.denial = Reason::denied; }},
            {"personNeeded", [this] { machine.denial = Reason::needsAuthentication; }},
            {"nobodyCanSay", [this] { machine.denial = Reason::unanswered; }},
            {"userIsAsked", [this] { machine.asksTheUser = true; }},
            {"userAnswers", [this] { machine.asked.front()(); }},
        };
    };

    TEST_F(HelperDaemonTest, DoesWhatTheCoursesSay)
    {
        const auto begin = [this] {
            later.clear();
            end();
            seen();
            machine.~FakeMachine();
            new (&machine) FakeMachine;
        };
        playCourses(HELPER_DAEMON_COURSES, begin, [this](const auto& word) { does(word); }, [this] { return seen(); });
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
                    if (enable(client))
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
