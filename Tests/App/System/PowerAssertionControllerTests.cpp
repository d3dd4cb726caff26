#include "App/System/PowerAssertionController.h"

#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/RecordedLog.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;

    using Steps = std::vector<std::string>;

    /// Notes each step.
    struct FakeSystem final : PowerAssertionBackend, DisplayControl, LidMonitoring {
        void beginActivity(const std::string& reason) override { steps.emplace_back("begin " + reason); }
        void endActivity() override { steps.emplace_back("end"); }
        std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string&) override
        {
            steps.emplace_back("create " + std::string{rawValue(type)});
            if (failure != 0)
                return std::unexpected{failure};
            return ++lastAssertion;
        }
        void release(std::uint32_t id) override { steps.emplace_back("release " + std::to_string(id)); }

        std::expected<void, std::string> turnOff() override
        {
            steps.emplace_back("off");
            return obeys ? std::expected<void, std::string>{} : std::unexpected{"not found"};
        }
        std::expected<void, int> wake(const std::string&) override
        {
            steps.emplace_back("wake");
            return obeys ? std::expected<void, int>{} : std::unexpected{-536870212};
        }
        void setWatchesWaking(bool) override { }

        bool isClosedWithoutExternalDisplay() const override { return isClosed; }
        bool isLidClosed() const override { return isClosed; }

        Steps steps;
        std::uint32_t lastAssertion = 0;
        int failure = 0;
        /// The display does as it is told.
        bool obeys = true;
        bool isClosed = false;
    };

    constexpr PowerRequirements none{};
    constexpr PowerRequirements idle{.preventsIdleSystemSleep = true};
    constexpr PowerRequirements closedLid{.disablesSystemSleep = true, .turnsDisplayOff = true};

    class PowerAssertions : public testing::Test {
    protected:
        Steps apply(const PowerRequirements& requirements)
        {
            controller->apply(requirements);
            return std::exchange(system.steps, {});
        }
        Steps advance(Seconds by)
        {
            time.advance(by);
            return std::exchange(system.steps, {});
        }

        RecordedLog log;
        FakeSystem system;
        VirtualTime time;
        std::optional<PowerAssertionController> controller{
            std::in_place, "reason", "app", PowerAssertionController::System{system, system, system, time}};
    };

} // namespace

TEST_F(PowerAssertions, ThatCouldNotBeCreatedAreTriedAgain)
{
    system.failure = -536870206;
    EXPECT_THAT(apply(idle), ElementsAre("begin reason", "create PreventUserIdleSystemSleep"));
    EXPECT_THAT(
        log.messages, ElementsAre("Création de l'assertion PreventUserIdleSystemSleep impossible : -536870206"));
    system.failure = 0;
    EXPECT_THAT(apply(idle), ElementsAre("create PreventUserIdleSystemSleep"));
    EXPECT_THAT(apply(none), ElementsAre("end", "release 1"));
}

TEST_F(PowerAssertions, AreLeftToTheSystemAtTheEnd)
{
    apply(idle);
    controller.reset();
    EXPECT_THAT(system.steps, ElementsAre("end"));
    system.onScreensWake(); // its owner is gone
}

TEST_F(PowerAssertions, TurnTheDisplayOffOnceAndWakeItOnlyWithAnOpenLid)
{
    system.isClosed = true;
    EXPECT_THAT(apply(closedLid), ElementsAre("off"));
    EXPECT_THAT(apply(closedLid), IsEmpty());
    EXPECT_THAT(apply(none), IsEmpty());
    apply(closedLid);
    system.isClosed = false;
    EXPECT_THAT(apply(none), ElementsAre("wake"));
    EXPECT_THAT(apply(none), IsEmpty());
    EXPECT_THAT(log.messages,
        ElementsAre("Capot fermé sans écran externe : écran éteint",
            "Capot fermé sans écran externe : écran éteint",
            "Capot rouvert : écran rallumé"));
}

TEST_F(PowerAssertions, LogADisplayThatDoesNotObey)
{
    system.obeys = false;
    apply(closedLid);
    EXPECT_THAT(apply(closedLid), IsEmpty());
    apply(none);
    EXPECT_THAT(log.messages,
        ElementsAre("Extinction de l'écran impossible : not found", "Rallumage de l'écran impossible : -536870212"));
}

TEST_F(PowerAssertions, TurnADisplayThatTheSystemWokeOffAgainTwoSecondsAfterTheLastTime)
{
    system.isClosed = true;
    system.onScreensWake();
    EXPECT_EQ(time.pendingTasks(), 0U) << "nothing is to be off";
    apply(closedLid);
    system.onScreensWake();
    EXPECT_THAT(advance(1.5s), IsEmpty());
    system.onScreensWake();
    EXPECT_THAT(advance(1.9s), IsEmpty());
    EXPECT_THAT(advance(0.1s), ElementsAre("off"));
    EXPECT_THAT(advance(10s), IsEmpty());
}

TEST_F(PowerAssertions, LeaveTheDisplayOnOnceTheLidIsOpenOrNothingIsToBeOff)
{
    system.isClosed = true;
    apply(closedLid);
    system.onScreensWake();
    system.isClosed = false;
    EXPECT_THAT(advance(3s), IsEmpty());

    system.isClosed = true;
    system.onScreensWake();
    apply(none);
    EXPECT_THAT(advance(3s), IsEmpty());
}

} // namespace vespra
