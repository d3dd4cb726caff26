#pragma once

// App/Headless: the application in a terminal: its output.

#include "App/Headless/TerminalOutput.h"
#include "App/Launch/CommandLineSession.h"

#include <functional>
#include <memory>
#include <optional>

namespace vespra {

/// The application without windows: prints in the terminal what happens. Main thread only.
class HeadlessApplication {
public:
    /// The arguments outlive it. `onFinish` gets the exit status once the session has ended.
    HeadlessApplication(AppDelegate& application, Platform& platform, const LaunchOptions& options,
        TerminalOutput& output, std::function<void(int exitStatus)> onFinish);
    ~HeadlessApplication();
    HeadlessApplication(const HeadlessApplication&) = delete;
    HeadlessApplication& operator=(const HeadlessApplication&) = delete;

    /// Launches the application and starts the session. A refusal is printed and finishes at once.
    void start();
    /// Ends the session, or cancels the action that was to follow it, and finishes.
    void terminate() { finish(); }

private:
    AppModel& model() { return application_.model(); }
    void follow(const SessionEvent& event);
    void followForcedAction();
    void followClosedLid();
    void complain(const std::string& text);
    void refuse(const std::string& reason);
    void finishAfter(Seconds delay);
    void finish();
    void drawLive();

    AppDelegate& application_;
    Platform& platform_;
    bool isIdle_;
    CommandLineSession session_;
    TerminalOutput& output_;
    std::function<void(int)> onFinish_;
    int exitStatus_;
    bool isFinished_ = false;
    std::optional<ObservationLoop> liveLoop_;
    std::optional<ObservationLoop> closedLidLoop_;
    std::optional<ClosedLidStatus> shownClosedLidStatus_;
    std::unique_ptr<ScheduledTask> delayedFinish_;
    Lifetime lifetime_;
};

} // namespace vespra
