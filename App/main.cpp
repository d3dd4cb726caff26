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

#include <QCoreApplication>
#include <QDir>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace vespra;

int runHeadless(QCoreApplication& application, const LaunchOptions& options)
{
    auto platform = makePlatform(options.platform);
    if (!platform) {
        commandLine::complain(programName, "--platform: " + platform.error());
        return ExitStatus::badArguments;
    }
    if (!platform->notice.empty())
        commandLine::complain(programName, platform->notice);

    const auto defaults = makeUserDefaults();
    AppDelegate delegate{{.platform = *platform,
                             .defaults = defaults.get(),
                             .home = QDir::homePath().toStdString(),
                             .supportDirectory = Brand::applicationSupportDirectory()},
        nullptr};
    TerminalOutput output;
    HeadlessApplication headless{delegate, *platform, options, output, [&](int exitStatus) {
                                     // Posted, for the loop may not run yet.
                                     platform->time.mainLoop->post(
                                         [exitStatus] { QCoreApplication::exit(exitStatus); });
                                 }};
    bool isInterrupted = false;
    const TerminationSignals termination{[&](int signal) {
        isInterrupted = signal == SIGINT;
        headless.terminate();
    }};
    headless.start();
    const int exitStatus = application.exec();
    return isInterrupted ? ExitStatus::interrupted : exitStatus;
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
    int plainArgumentCount = 1;
    QCoreApplication application{plainArgumentCount, argv};
    QCoreApplication::setApplicationName(QString::fromStdString(Brand::appName()));
    if (const auto installed = installTranslation(application); !installed)
        commandLine::complain(programName, installed.error());
    const SingleInstance instance{SingleInstance::defaultPath()};
    if (instance.claim() == SingleInstance::Claim::taken)
        return handOver(options);
    return runHeadless(application, options);
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
