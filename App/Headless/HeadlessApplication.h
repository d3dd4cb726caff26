#pragma once

#include "App/Agents/AgentSocketServer.h"
#include "App/Agents/ForcedEndAction.h"
#include "App/Headless/HeadlessOptions.h"
#include "App/Headless/TerminalOutput.h"
#include "App/System/ClosedLidController.h"
#include "App/System/Platform.h"
#include "App/System/PowerAssertionController.h"
#include "Core/Agents/AgentEndCondition.h"
#include "Core/Observation/ObservationLoop.h"
#include "Core/Session/SessionCoordinator.h"

#include <functional>
#include <memory>
#include <optional>

namespace vespra {

/// The application without windows: one session, told of in the terminal. Main thread only.
class HeadlessApplication {
public:
    /// `platform` and `output` outlive it. `onFinish` gets the exit status once the session has ended.
    HeadlessApplication(Platform& platform, const HeadlessOptions& options, TerminalOutput& output,
        std::function<void(int exitStatus)> onFinish);
    ~HeadlessApplication();
    HeadlessApplication(const HeadlessApplication&) = delete;
    HeadlessApplication& operator=(const HeadlessApplication&) = delete;

    /// Listens to the agents and starts the session. A refusal is printed and finishes at once.
    void start();
    /// Ends the session because the application ends, or cancels what was to follow it, and finishes.
    void terminate();

private:
    void receive(const AgentEvent& event);
    void follow(const SessionEvent& event);
    void followEnd(const EndReason& reason);
    void followSystem();
    void followClosedLid();
    void startSession();
    void startOnceReady();
    void finishAfter(Seconds delay);
    void finish(int exitStatus);
    void drawLive();

    Platform& platform_;
    HeadlessOptions options_;
    TerminalOutput& output_;
    std::function<void(int)> onFinish_;
    AgentTracker agents_;
    SessionCoordinator coordinator_;
    std::shared_ptr<AgentEndCondition> agentCondition_;
    std::optional<ClosedLidController> closedLid_;
    std::optional<ForcedEndAction> forcedEndAction_;
    std::optional<AgentSocketServer> agentSocket_;
    std::optional<PowerAssertionController> assertions_;
    std::optional<ObservationLoop> assertionLoop_;
    std::optional<ObservationLoop> liveLoop_;
    std::optional<ObservationLoop> closedLidLoop_;
    std::optional<ObservationLoop> readinessLoop_;
    std::unique_ptr<ScheduledTask> startLimit_;
    std::optional<ClosedLidStatus> shownClosedLidStatus_;
    std::unique_ptr<ScheduledTask> delayedFinish_;
    std::unique_ptr<ScheduledTask> nextSecond_;
    Lifetime lifetime_;
};

} // namespace vespra
