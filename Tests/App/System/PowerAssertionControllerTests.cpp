#include "App/System/PowerAssertionController.h"

#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/Courses.h"
#include "Tests/Support/RecordedLog.h"

#include <map>

namespace vespra {

namespace {

    struct PowerAssertions : testing::Test, PowerAssertionBackend, DisplayControl, LidMonitoring {
        void beginActivity(const std::string& reason) override { steps += "begin \"" + reason + "\" "; }
        void endActivity() override { steps += "end "; }
        std::expected<std::uint32_t, int> create(PowerAssertionType type, const std::string&) override
        {
            steps += "create " + std::string{rawValue(type)} + " ";
            return obeys ? std::expected<std::uint32_t, int>{++lastAssertion} : std::unexpected{-536870206};
        }
        void release(std::uint32_t id) override { steps += "release " + std::to_string(id) + " "; }
        std::expected<void, std::string> turnOff() override
        {
            steps += "off ";
            return obeys ? std::expected<void, std::string>{} : std::unexpected{"not found"};
        }
        std::expected<void, int> wake(const std::string&) override
        {
            steps += "wake ";
            return obeys ? std::expected<void, int>{} : std::unexpected{-536870212};
        }
        void setWatchesWaking(bool) override { }
        bool isClosedWithoutExternalDisplay() const override { return isClosed; }
        bool isLidClosed() const override { return isClosed; }

        void begin()
        {
            lastAssertion = 0;
            obeys = true;
            isClosed = false;
            controller.emplace("reason", "app", PowerAssertionController::System{*this, *this, *this, time});
            seen();
        }
        void does(const std::string& word)
        {
            const auto action = actions.find(word);
            action == actions.end() ? time.advance(Seconds{std::stod(word)}) : action->second();
        }
        /// What the system was told to do, and what was logged.
        std::string seen()
        {
            auto text = std::exchange(steps, {});
            for (const auto& message : std::exchange(log.messages, {}))
                text += "\"" + message + "\" ";
            return text.empty() ? "nothing" : text.substr(0, text.size() - 1);
        }

        std::string steps;
        std::uint32_t lastAssertion = 0;
        bool obeys = true, isClosed = false;
        RecordedLog log;
        VirtualTime time;
        std::optional<PowerAssertionController> controller;
        const std::map<std::string, std::function<void()>> actions{
            {"nothingIsRequired", [this] { controller->apply(PowerRequirements::none()); }},
            {"keepAwake", [this] { controller->apply({.preventsIdleSystemSleep = true}); }},
            {"closedLid", [this] { controller->apply({.disablesSystemSleep = true, .turnsDisplayOff = true}); }},
            {"quit", [this] { controller.reset(); }},
            {"lidShut", [this] { isClosed = true; }},
            {"lidOpen", [this] { isClosed = false; }},
            {"screensWake", [this] { onScreensWake(); }},
            {"systemFails", [this] { obeys = false; }},
            {"systemWorks", [this] { obeys = true; }},
        };
    };

    TEST_F(PowerAssertions, DoWhatTheCoursesSay)
    {
        playCourses(
            POWER_ASSERTION_COURSES,
            [this] { begin(); },
            [this](const auto& word) { does(word); },
            [this] { return seen(); });
    }

} // namespace

} // namespace vespra
