#pragma once

// App/Desktop: the application with windows: its surfaces, and how it comes and goes on a desktop.

#include "App/Launch/CommandLineSession.h"

#include <QObject>

namespace vespra {

/// The application on a desktop: runs until somebody quits it. Main thread only.
class DesktopApplication final : public QObject {
public:
    /// All but the options outlive it; a QApplication exists.
    DesktopApplication(AppDelegate& application, Platform& platform, const LaunchOptions& options);

    /// Launches the application, and starts the session that the command line asks for.
    void start();
    /// Ends the session, puts the sleep setting back and leaves the main loop.
    void terminate();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void startSession();
    void followSessionManager();

    AppDelegate& application_;
    Platform& platform_;
    LaunchOptions options_;
    CommandLineSession session_;
    bool isTerminated_ = false;
};

} // namespace vespra
