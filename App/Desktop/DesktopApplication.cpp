#include "App/Desktop/DesktopApplication.h"

#include "App/Desktop/ApplicationIdentity.h"
#include "App/Launch/ExitStatus.h"
#include "App/Launch/SimulatedScreen.h"
#include "ControlProtocol/CommandLine.h"

#include <QApplication>
#include <QEvent>
#include <QSessionManager>
#include <QWidget>

namespace vespra {

DesktopApplication::DesktopApplication(AppDelegate& application, Platform& platform, const LaunchOptions& options)
    : application_{application}
    , platform_{platform}
    , options_{options}
    , session_{application, platform, options}
{
    setApplicationIdentity();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    qApp->installEventFilter(this);
    followSessionManager();
}

/// It starts with the session where the user wants that, and not because it ran when the last one ended.
void DesktopApplication::followSessionManager()
{
    const auto isNotRestored = [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); };
    connect(qApp, &QGuiApplication::commitDataRequest, this, isNotRestored, Qt::DirectConnection);
    connect(qApp, &QGuiApplication::saveStateRequest, this, isNotRestored, Qt::DirectConnection);
    // Some ends of the desktop's session leave the main loop, or the program, without asking.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &DesktopApplication::terminate);
}

void DesktopApplication::start()
{
    const auto complain = [](const std::string& text) { commandLine::complain(programName, text); };
    session_.onNote = complain;
    session_.onRefusal = complain;
    application_.didFinishLaunching();
    session_.applySettings();
    simulatedScreen::follow(platform_, [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); });
    if (options_.session != StartOptions{} && !options_.isIdle)
        startSession();
}

/// The panel shows what came of it, a refusal too.
void DesktopApplication::startSession()
{
    session_.start();
    notify(application_.model().showPanel);
}

void DesktopApplication::terminate()
{
    if (std::exchange(isTerminated_, true))
        return;
    application_.model().forcedEndAction().cancel();
    application_.shouldTerminate();
    application_.willTerminate();
    // What hides may still look at the model, which ends before the windows do.
    for (auto* window : QApplication::topLevelWidgets())
        window->hide();
    QCoreApplication::exit(ExitStatus::done);
}

bool DesktopApplication::eventFilter(QObject* watched, QEvent* event)
{
    // No window has a say in whether the application quits.
    if (watched != qApp || event->type() != QEvent::Quit)
        return false;
    terminate();
    event->accept();
    return true;
}

} // namespace vespra
