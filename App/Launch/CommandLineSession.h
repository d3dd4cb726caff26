#pragma once

#include "App/Launch/AppDelegate.h"
#include "App/Launch/LaunchOptions.h"

#include <functional>
#include <memory>
#include <optional>

namespace vespra {

/// The session that the command line asks for, over what the user has chosen before. Main thread only.
class CommandLineSession {
public:
    /// The application is launched before anything else is called; it and the platform outlive this.
    CommandLineSession(AppDelegate& application, Platform& platform, const LaunchOptions& options);

    /// Settings of the command line count for this run only: what is kept stays as it is.
    void applySettings();
    SessionPreferences preferences();
    /// Starts the session; one with a closed lid once it is known whether the component can carry that out.
    void start();

    /// What the user may want to know, though nothing fails.
    std::function<void(const std::string&)> onNote;
    /// The session did not start, for this reason.
    std::function<void(const std::string&)> onRefusal;

private:
    AppModel& model() { return application_.model(); }
    UserSettings settings();
    void startOnceReady();
    void startNow();

    AppDelegate& application_;
    Platform& platform_;
    LaunchOptions options_;
    std::optional<ObservationLoop> readinessLoop_;
    std::unique_ptr<ScheduledTask> startLimit_;
    Lifetime lifetime_;
};

} // namespace vespra
