#include "App/Headless/ExitStatus.h"
#include "App/Headless/HeadlessApplication.h"
#include "App/Headless/TerminationSignals.h"
#include "App/Wording/Translations.h"
#include "HelperProtocol/Brand.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>

namespace {

using namespace vespra;

int runHeadless(QCoreApplication& application, const HeadlessOptions& options)
{
    auto platform = makePlatform(options.platform);
    if (!platform) {
        std::fprintf(stderr, "--platform: %s\n", platform.error().c_str());
        return ExitStatus::badArguments;
    }
    if (!platform->notice.empty())
        std::fprintf(stderr, "%s\n", platform->notice.c_str());

    TerminalOutput output;
    HeadlessApplication headless{*platform, options, output, [&](int exitStatus) {
                                     // Posted, for the loop may not run yet.
                                     platform->time.mainLoop->post(
                                         [exitStatus] { QCoreApplication::exit(exitStatus); });
                                 }};
    const TerminationSignals termination{[&] { headless.terminate(); }};
    headless.start();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    const auto options = parsedCommandLine(argc, argv);
    if (const auto* exitStatus = std::get_if<int>(&options))
        return *exitStatus;
    // Whoever reads the output may go away; the session goes on.
    std::signal(SIGPIPE, SIG_IGN);
    int plainArgumentCount = 1;
    QCoreApplication application{plainArgumentCount, argv};
    QCoreApplication::setApplicationName(QString::fromStdString(Brand::appName()));
    if (const auto installed = installTranslation(application); !installed)
        std::fprintf(stderr, "%s\n", installed.error().c_str());
    return runHeadless(application, std::get<HeadlessOptions>(options));
}
