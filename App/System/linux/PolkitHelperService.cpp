#include "App/System/linux/PolkitHelperService.h"

#include "HelperProtocol/linux/InstallationNames.h"

#include <QDBusArgument>

namespace vespra {

namespace {

    QDBusMessage checkAuthorization(bool mayAskTheUser)
    {
        QDBusArgument subject;
        subject.beginStructure();
        subject << QStringLiteral("system-bus-name")
                << QVariantMap{{QStringLiteral("name"), dbus::systemBus().baseService()}};
        subject.endStructure();
        QDBusArgument noDetails;
        noDetails.beginMap(QMetaType{QMetaType::QString}, QMetaType{QMetaType::QString});
        noDetails.endMap();
        const dbus::Target polkit{QStringLiteral("org.freedesktop.PolicyKit1"),
            QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
            QStringLiteral("org.freedesktop.PolicyKit1.Authority")};
        auto message = polkit.method(QStringLiteral("CheckAuthorization"),
            {QVariant::fromValue(subject),
                QString::fromLatin1(installation::polkitAction),
                QVariant::fromValue(noDetails),
                mayAskTheUser ? 1U : 0U,
                QString{}});
        message.setAutoStartService(true);
        return message;
    }

    HelperServiceStatus approval(const QDBusMessage& reply)
    {
        // Without polkit the component itself has to say what it refuses.
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QStringLiteral("(bba{ss})"))
            return HelperServiceStatus::enabled;
        const auto result = reply.arguments().value(0).value<QDBusArgument>();
        bool isAuthorized = false, isChallenge = false;
        result.beginStructure();
        QMap<QString, QString> details;
        result >> isAuthorized >> isChallenge >> details;
        result.endStructure();
        return isAuthorized ? HelperServiceStatus::enabled
            : isChallenge   ? HelperServiceStatus::requiresApproval
                            : HelperServiceStatus::unknown;
    }

} // namespace

PolkitHelperService::PolkitHelperService(HelperPrograms programs)
    : programs_{std::move(programs)}
{
}

PolkitHelperService::~PolkitHelperService()
{
    // Left running, since the user may be typing the password: without us it still installs everything or nothing.
    if (installer_) {
        installer_->disconnect();
        installer_.release()->deleteLater();
    }
}

void PolkitHelperService::ask(
    const QDBusMessage& message, int timeout, std::function<void(const QDBusMessage&)> onReply)
{
    const int id = ++lastCall_;
    calls_[id] = dbus::call(
        dbus::systemBus(), message, timeout, [this, id, onReply = std::move(onReply)](const QDBusMessage& reply) {
            calls_.erase(id);
            onReply(reply);
        });
}

void PolkitHelperService::watchBus()
{
    const auto bus = dbus::systemBus();
    if (watched_.name() == bus.name())
        return;
    watched_ = bus;
    owner_.emplace(bus, QString::fromLatin1(installation::busName), [this](bool isOwned) {
        if (isOwned)
            notify(onChange);
    });
    services_.emplace(bus, dbus::bus(), QStringLiteral("ActivatableServicesChanged"), [this](const QDBusMessage&) {
        notify(onChange);
    });
}

void PolkitHelperService::status(std::function<void(HelperServiceStatus)> answer)
{
    watchBus();
    ask(dbus::bus().method(QStringLiteral("ListActivatableNames")),
        dbus::readingTimeout,
        [this, answer = std::move(answer)](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ReplyMessage)
                return answer(HelperServiceStatus::unknown);
            if (!reply.arguments().value(0).toStringList().contains(QLatin1String{installation::busName})
                || programs_.areDifferent())
                return answer(HelperServiceStatus::notRegistered);
            askPolkit(false, dbus::readingTimeout, [this, answer](HelperServiceStatus said) {
                const bool isSettled = isApproved_ && said == HelperServiceStatus::requiresApproval;
                answer(isSettled ? HelperServiceStatus::enabled : said);
            });
        });
}

void PolkitHelperService::askPolkit(bool mayAskTheUser, int timeout, Answer answer)
{
    ask(checkAuthorization(mayAskTheUser), timeout, [answer = std::move(answer)](const QDBusMessage& reply) {
        answer(approval(reply));
    });
}

void PolkitHelperService::openSettings()
{
    askPolkit(true, dbus::untilAnswered, [this](HelperServiceStatus said) {
        isApproved_ = said == HelperServiceStatus::enabled;
        notify(onChange);
    });
}

void PolkitHelperService::registerService(std::function<void(std::expected<void, std::string>)> done)
{
    if (isRefused(done))
        return;
    status(lifetime_.guard([this, done](HelperServiceStatus current) {
        // Another may have begun meanwhile.
        if (isRefused(done))
            return;
        if (current != HelperServiceStatus::notRegistered && programs_.areInPlace())
            return done({});
        change(QStringLiteral("--install"), done);
    }));
}

void PolkitHelperService::unregisterService(std::function<void(std::expected<void, std::string>)> done)
{
    if (!isRefused(done))
        change(QStringLiteral("--uninstall"), done);
}

/// Answers in a later turn.
bool PolkitHelperService::isRefused(const std::function<void(std::expected<void, std::string>)>& done)
{
    if (!installer_ && !programs_.own.isEmpty())
        return false;
    const std::string reason = installer_ ? "une installation est déjà en cours" : "vespra-helper est introuvable";
    ask(dbus::bus().method(QStringLiteral("GetId")), dbus::readingTimeout, [done, reason](const QDBusMessage&) {
        done(std::unexpected{reason});
    });
    return true;
}

void PolkitHelperService::change(
    const QString& option, const std::function<void(std::expected<void, std::string>)>& done)
{
    installer_ = std::make_unique<QProcess>();
    const auto finish = [this, done] { ended(done); };
    QObject::connect(installer_.get(), &QProcess::finished, finish);
    QObject::connect(installer_.get(), &QProcess::errorOccurred, [finish](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish();
    });
    installer_->start(QStringLiteral("pkexec"), {programs_.own, option});
}

void PolkitHelperService::ended(const std::function<void(std::expected<void, std::string>)>& done)
{
    const auto callback = done;
    auto* const installer = installer_.release();
    installer->deleteLater();
    if (installer->error() == QProcess::FailedToStart)
        return callback(std::unexpected{"pkexec : " + installer->errorString().toStdString()});
    if (installer->exitStatus() == QProcess::NormalExit && installer->exitCode() == 0)
        return callback({});
    const auto said = QString::fromUtf8(installer->readAllStandardError()).trimmed();
    callback(std::unexpected{said.isEmpty() ? "pkexec a échoué" : said.toStdString()});
}

} // namespace vespra
