#pragma once

// App/Launch: from the command line to a running application, and its end. AppDelegate joins everything.

#include "App/Agents/AgentSocketServer.h"
#include "App/ControlSocket/ControlServer.h"
#include "App/Launch/AppSurfaces.h"
#include "App/Model/AppModel.h"
#include "App/Notifications/SessionEventHandler.h"
#include "App/System/ClosedLidController.h"
#include "App/System/PowerAssertionController.h"
#include "Core/Observation/ObservationLoop.h"

namespace vespra {

/// Builds and joins every object that lives as long as the application, and takes it down again. Main thread only.
class AppDelegate {
public:
    /// How long quitting waits for the component to put the sleep setting back.
    static constexpr Seconds restoreLimit = 2s;

    /// What `environment` names, and `surfaces`, outlive it. Without surfaces (null) nothing is shown.
    AppDelegate(const AppEnvironment& environment, AppSurfaces* surfaces);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Called for every event of the session, after the application has done its own part.
    std::function<void(const SessionEvent&)> onEvent;

    /// Once.
    void didFinishLaunching();
    /// Before quitting: puts the sleep setting back. Blocks at most for `restoreLimit`.
    void shouldTerminate();
    /// Quitting: ends the session and holds nothing any more. Once.
    void willTerminate();

    /// Whether the agents' events arrive: false if their socket could not be made.
    bool isListeningToAgents() const { return agentSocket_ && agentSocket_->isListening(); }
    /// From launch on.
    AppModel& model() { return *model_; }
    ClosedLidController& closedLid() { return *model_->closedLid(); }

private:
    void makeClosedLid();
    void listenToAgents();
    void receive(const AgentEvent& event);
    void traceCorrections();
    void handleEvents();
    void openUpdate();
    void followSystem();
    void makeAssertions();
    void followRequirements();
    void makeSurfaces();
    SurfaceContext surfaceContext();
    void listenToTerminals();

    AppEnvironment environment_;
    AppSurfaces* surfaces_;
    bool tracesAgents_;
    std::optional<AppModel> model_;
    std::optional<AgentSocketServer> agentSocket_;
    std::optional<SessionEventHandler> eventHandler_;
    std::optional<PowerAssertionController> assertions_;
    std::optional<ObservationLoop> assertionLoop_;
    std::optional<ControlServer> controlServer_;
    Lifetime lifetime_;
};

} // namespace vespra
