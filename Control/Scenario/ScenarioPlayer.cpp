#include "Control/Scenario/ScenarioPlayer.h"

#include "ControlProtocol/SnapshotJSON.h"
#include "Core/Energy/ScriptedMonitors.h"
#include "Core/Scheduling/VirtualTime.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    class ScenarioPlayer {
    public:
        ScenarioPlayer(const Scenario& scenario, const std::function<void(std::string_view)>& printLine)
            : scenario_{scenario}
            , printLine_{printLine}
            , time_{scenario.start}
            , power_{scenario.conditions.power}
            , thermal_{scenario.conditions.thermal}
            , coordinator_{scenario.settings,
                  scenario.calendar,
                  {.clock = time_, .scheduler = time_, .power = power_, .thermal = thermal_},
                  scenario.conditions.helper}
        {
            coordinator_.updateHelper(scenario.conditions.helper, scenario.conditions.lidSleepDisabled);
            coordinator_.updateLid(scenario.conditions.lidClosedWithoutExternalDisplay);
            coordinator_.onEvent
                = [this](const SessionEvent& event) { print({{"event", sessionEventJSON(event, dateWriter())}}); };
        }

        void play()
        {
            for (const auto& step : scenario_.steps) {
                time_.advanceTo(step.date);
                std::visit([this](const auto& action) { perform(action); }, step.action);
            }
            time_.advanceTo(scenario_.until);
        }

    private:
        DateWriter dateWriter() const
        {
            return [start = scenario_.start](Instant instant) { return roundedJSON(instant - start); };
        }

        /// Prints `happening` with the date in front.
        void print(const JSON& happening)
        {
            JSON line{{"at", roundedJSON(time_.now() - scenario_.start)}};
            line.update(happening);
            printLine_(dumped(line));
        }

        void printRefusal(const std::expected<void, StartRefusal>& result)
        {
            if (!result)
                print(refusalJSON(result.error()));
        }

        void perform(const step::Start& start)
        {
            std::shared_ptr<AgentEndCondition> condition;
            if (mode(start.plan) == SessionMode::agent)
                condition = std::make_shared<AgentEndCondition>(tracker_, coordinator_.settings().agents, time_);
            const auto started = coordinator_.start(start.plan, start.options, condition);
            if (started)
                condition_ = condition;
            printRefusal(started);
        }
        void perform(const step::Stop& stop) { coordinator_.stop(stop.reason); }
        void perform(const step::Extend&) { coordinator_.extend(); }
        void perform(const step::KeepAwake&)
        {
            if (const auto condition = condition_.lock())
                condition->keepAwake();
        }
        void perform(const step::KeepsDisplayAwake& keeps) { coordinator_.setKeepsDisplayAwake(keeps.value); }
        void perform(const step::ClosedLid& lid) { printRefusal(coordinator_.setClosedLid(lid.enabled)); }
        void perform(const step::Settings& changed) { coordinator_.setSettings(changed.settings); }
        void perform(const step::Power& power) { power_.report(power.snapshot); }
        void perform(const step::Thermal& thermal) { thermal_.report(thermal.level); }
        void perform(const step::Helper& helper) { coordinator_.updateHelper(helper.status, helper.lidSleepDisabled); }
        void perform(const step::Lid& lid) { coordinator_.updateLid(lid.closedWithoutExternalDisplay); }
        void perform(const step::Hook& hook)
        {
            if (const auto event = agentEvent(hook.input, hook.agent, time_.now()))
                tracker_.record(*event);
        }
        void perform(const step::Show& show)
        {
            const auto condition = condition_.lock();
            const SnapshotContext context{
                .closedLidRequested = show.closedLidRequested,
                .deadline = time_.nextDeadline(),
                .condition = condition.get(),
                .tracker = tracker_,
            };
            print({{"show", snapshotJSON(coordinator_, context, dateWriter())}});
        }

        const Scenario& scenario_;
        const std::function<void(std::string_view)>& printLine_;
        VirtualTime time_;
        ScriptedPowerSource power_;
        ScriptedThermal thermal_;
        AgentTracker tracker_;
        SessionCoordinator coordinator_;
        /// The coordinator keeps it while it is attached.
        std::weak_ptr<AgentEndCondition> condition_;
    };

} // namespace

void play(const Scenario& scenario, const std::function<void(std::string_view line)>& print)
{
    ScenarioPlayer{scenario, print}.play();
}

} // namespace vespra
