#include "App/Desktop/DesktopApplication.h"
#include "App/Desktop/DesktopSurfaces.h"
#include "App/Desktop/Display.h"
#include "App/Headless/HeadlessApplication.h"
#include "App/Launch/ExitStatus.h"
#include "App/Launch/SingleInstance.h"
#include "App/Launch/TerminationSignals.h"
#include "App/Model/UserDefaults.h"
#include "App/Render/Render.h"
#include "App/Wording/Localized.h"
#include "App/Wording/Translations.h"
#include "ControlProtocol/CommandLine.h"
#include "ControlProtocol/ControlRequest.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/Process.h"
#include "HelperProtocol/PropertyList.h"
#include "Host/Host.h"

#include <QApplication>
#include <QDir>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace vespra;

/// The platform that the options ask for; absent after a complaint.
std::optional<Platform> platformOf(const LaunchOptions& options)
{
    auto platform = makePlatform(options.platform);
    if (!platform) {
        commandLine::complain(programName, "--platform: " + platform.error());
        return {};
    }
    if (!platform->notice.empty())
        commandLine::complain(programName, platform->notice);
    return std::move(*platform);
}

AppEnvironment environmentOf(Platform& platform, UserDefaults& defaults)
{
    return {.platform = platform,
        .defaults = &defaults,
        .home = QDir::homePath().toStdString(),
        .supportDirectory = Brand::applicationSupportDirectory()};
}

/// Runs the main loop; `terminate` ends it when a signal asks for that.
int exec(const std::function<void()>& terminate, const std::function<void()>& start)
{
    bool isInterrupted = false;
    const TerminationSignals termination{[&](int signal) {
        isInterrupted = signal == SIGINT;
        terminate();
    }};
    start();
    const int exitStatus = QCoreApplication::exec();
    return isInterrupted ? ExitStatus::interrupted : exitStatus;
}

int runHeadless(Platform& platform, const LaunchOptions& options)
{
    const auto defaults = makeUserDefaults();
    AppDelegate delegate{environmentOf(platform, *defaults), nullptr};
    TerminalOutput output;
    HeadlessApplication headless{delegate, platform, options, output, [&](int exitStatus) {
                                     // Posted, for the loop may not run yet.
                                     platform.time.mainLoop->post([exitStatus] { QCoreApplication::exit(exitStatus); });
                                 }};
    return exec([&] { headless.terminate(); }, [&] { headless.start(); });
}

int runOnDesktop(Platform& platform, const LaunchOptions& options)
{
    const auto defaults = makeUserDefaults();
    DesktopSurfaces surfaces;
    AppDelegate delegate{environmentOf(platform, *defaults), &surfaces};
    DesktopApplication desktop{delegate, platform, options};
    return exec([&] { desktop.terminate(); }, [&] { desktop.start(); });
}

/// A second launch only shows the running application, so any option besides is refused.
int handOver(const LaunchOptions& options)
{
    if (!options.isPlain()) {
        const auto text
            = localized("%1 is already running. \"vespractl start\" starts a session in it.", {Brand::appName()});
        commandLine::complain(programName, text);
        return ExitStatus::failed;
    }
    if (showRunningApplication(controlProtocol::defaultPath()))
        return ExitStatus::done;
    const auto text = localized("%1 is already running, but does not answer.", {Brand::appName()});
    commandLine::complain(programName, text);
    return ExitStatus::failed;
}

/// Qt's, in the user's language.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasDisplay)
{
    // Every control draws itself: no style of the desktop needs to be loaded.
    if (hasDisplay)
        QApplication::setStyle(QStringLiteral("Fusion"));
    std::unique_ptr<QCoreApplication> application;
    if (hasDisplay)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setApplicationName(QString::fromStdString(Brand::appName()));
    if (const auto installed = installTranslation(*application); !installed)
        commandLine::complain(programName, installed.error());
    return application;
}

/// Runs until the end that the arguments ask for and returns the exit status.
int run(int argc, char** argv)
{
    const auto parsed = parsedCommandLine(argc, argv);
    if (const auto* exitStatus = std::get_if<int>(&parsed))
        return *exitStatus;
    const auto& options = std::get<LaunchOptions>(parsed);
    if (options.render)
        return renderSurfaces(*options.render);
    // The session goes on even if nobody reads the output any more.
    std::signal(SIGPIPE, SIG_IGN);
    // Qt looks for the home directory in the environment only.
    if (QDir::homePath() == QDir::rootPath())
        setenv("HOME", homeDirectory().c_str(), /*overwrite=*/1);
    const SingleInstance instance{SingleInstance::defaultPath()};
    const bool isFirst = instance.claim() != SingleInstance::Claim::taken;
    const auto display = options.isHeadless || !isFirst ? std::unexpected{std::string{}} : prepareDisplay();
    int plainArgumentCount = 1;
    const auto application = makeApplication(plainArgumentCount, argv, display.has_value());
    if (!isFirst)
        return handOver(options);
    if (!display && !options.isHeadless)
        commandLine::complain(programName, display.error());
    auto platform = platformOf(options);
    if (!platform)
        return ExitStatus::badArguments;
    return display ? runOnDesktop(*platform, options) : runHeadless(*platform, options);
}

} // namespace

int main(int argc, char** argv)
{
    process::openStandardDescriptors();
    const int exitStatus = inAutoreleasePool([&] { return run(argc, argv); });
    const bool isWritten = process::isOutputWritten();
    if (exitStatus == ExitStatus::interrupted)
        process::endBySignal(SIGINT);
    // A reader that has closed the pipe wants no more output: that is no failure.
    if (isWritten || !process::hasReader(STDOUT_FILENO))
        return exitStatus;
    std::fprintf(stderr, "vespra: cannot write all of it to standard output\n");
    return exitStatus == ExitStatus::done ? ExitStatus::failed : exitStatus;
}
