#include "App/System/linux/LinuxUpdateTools.h"

#include "HelperProtocol/Brand.h"
#include "HelperProtocol/PropertyList.h"
#include "Host/Host.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTimer>

namespace vespra {

namespace {

    /// The process, from its start to its end; killed if this goes first.
    class ProcessRun final : public UpdateRun {
    public:
        ProcessRun(std::function<void(const UpdateMessage&)> onMessage, std::function<void()> onEnd)
            : onMessage_{std::move(onMessage)}
            , onEnd_{std::move(onEnd)}
        {
            process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            QObject::connect(&process_, &QProcess::readyReadStandardOutput, [this] { read(); });
            QObject::connect(&process_, &QProcess::finished, [this] { end(); });
            QObject::connect(&process_, &QProcess::errorOccurred, [this](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart)
                    QTimer::singleShot(0, &process_, [this] { end(); });
            });
        }
        ~ProcessRun() override
        {
            process_.disconnect();
            process_.kill();
            process_.waitForFinished();
        }

        void start(const QString& program, const QStringList& arguments, const QByteArray& input)
        {
            process_.start(program, arguments);
            process_.write(input);
            process_.closeWriteChannel();
        }

    private:
        /// What has no end after so many bytes is no message.
        static constexpr qsizetype longestLine = 4'000'000;

        void read()
        {
            bytes_ += process_.readAllStandardOutput();
            for (auto end = bytes_.indexOf('\n'); end >= 0; end = bytes_.indexOf('\n')) {
                const auto line = bytes_.left(end).toStdString();
                bytes_.remove(0, end + 1);
                if (const auto message = updateMessageFrom(line))
                    onMessage_(*message);
            }
            if (bytes_.size() > longestLine)
                process_.kill();
        }
        void end()
        {
            read();
            onEnd_();
        }

        QProcess process_;
        QByteArray bytes_;
        std::function<void(const UpdateMessage&)> onMessage_;
        std::function<void()> onEnd_;
    };

} // namespace

LinuxUpdateTools::LinuxUpdateTools(std::filesystem::path program, QString opener)
    : program_{QString::fromStdString(program.string())}
    , opener_{std::move(opener)}
{
}

std::unique_ptr<UpdateRun> LinuxUpdateTools::run(const std::vector<std::string>& arguments, const std::string& input,
    std::function<void(const UpdateMessage&)> onMessage, std::function<void()> onEnd)
{
    auto run = std::make_unique<ProcessRun>(std::move(onMessage), std::move(onEnd));
    QStringList words;
    for (const auto& argument : arguments)
        words << QString::fromStdString(argument);
    run->start(program_, words, QByteArray::fromStdString(input));
    return run;
}

void LinuxUpdateTools::open(const std::string& package, std::function<void(bool opened)> onDone)
{
    const dbus::Target installer{QStringLiteral("org.freedesktop.PackageKit"),
        QStringLiteral("/org/freedesktop/PackageKit"),
        QStringLiteral("org.freedesktop.PackageKit.Modify")};
    const auto file = QString::fromStdString(package);
    constexpr unsigned noWindow = 0;
    // Without a window's number, and with the interaction that the service has by default.
    const auto message
        = installer.method(QStringLiteral("InstallPackageFiles"), {noWindow, QStringList{file}, QString{}});
    asked_ = dbus::call(dbus::sessionBus(),
        message,
        dbus::untilAnswered,
        [this, file, onDone = std::move(onDone)](const QDBusMessage& reply) {
            const auto error = reply.errorName();
            const bool isThere = error != QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown")
                && error != QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner")
                && error != QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod")
                && error != QStringLiteral("org.freedesktop.DBus.Error.Disconnected");
            if (isThere)
                return onDone(true); // whatever it said, it said to the user
            openByDesktop(file, onDone);
        });
}

void LinuxUpdateTools::openByDesktop(const QString& package, const std::function<void(bool opened)>& onDone) const
{
    auto* const process = new QProcess;
    QObject::connect(process, &QProcess::finished, process, [process, onDone](int status) {
        process->deleteLater();
        onDone(status == 0);
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, onDone](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        process->deleteLater();
        onDone(false);
    });
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(opener_, {package});
}

std::unique_ptr<Updater> makeFeedUpdater(TaskScheduling& tasks, const WallClock& clock)
{
    const auto isConfigured = [](const char* key) { return !propertyListText(key).value_or("").empty(); };
    const auto program = auxiliaryExecutable("vespra-update");
    if (!isConfigured("SUFeedURL") || !isConfigured("SUPublicEDKey") || !program)
        return {};
    const auto cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation).toStdString();
    return std::make_unique<FeedUpdater>(FeedUpdater::Environment{
        .tools = std::make_unique<LinuxUpdateTools>(*program, QStringLiteral("xdg-open")),
        .tasks = tasks,
        .clock = clock,
        .record = std::filesystem::path{Brand::applicationSupportDirectory()} / "updates.json",
        .folder = std::filesystem::path{cache} / Brand::appName() / "updates",
        .chance = [] { return QRandomGenerator::global()->generateDouble(); },
    });
}

} // namespace vespra
