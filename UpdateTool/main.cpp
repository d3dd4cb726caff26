#include "Core/Updates/UpdateMessage.h"
#include "HelperProtocol/Brand.h"
#include "HelperProtocol/PropertyList.h"
#include "UpdateTool/Appcast.h"
#include "UpdateTool/Download.h"

#include <cstdio>
#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

// vespra-update check: tells of the newest version, or that there is none.
// vespra-update download --into FOLDER < OFFER: fetches the package of an offer that `check` has told.

using namespace vespra;

namespace {

using updateMessage::Failed;
using Answer = std::expected<UpdateMessage, Failed>;

constexpr std::int64_t feedLimit = 1'000'000, packageLimit = 200'000'000;

void tell(const UpdateMessage& message)
{
    std::puts(encoded(message).c_str());
    std::fflush(stdout);
}

struct Settings {
    QUrl feed;
    std::optional<SigningKey> key;
    std::string current;
    QString folder;
    /// For all of a download; absent: as long as is usual.
    std::optional<Seconds> limit;
    QList<QSslCertificate> authorities;

    DownloadLimits limits(std::int64_t bytes, Seconds total) const
    {
        return {.bytes = bytes, .total = limit.value_or(total), .authorities = authorities};
    }
};

std::unexpected<Failed> failed(UpdateFailure reason, std::string detail)
{
    return std::unexpected{Failed{reason, std::move(detail)}};
}

Answer check(const Settings& settings)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (const auto done = download(settings.feed, buffer, settings.limits(feedLimit, 1min)); !done)
        return std::unexpected{done.error()};
    const auto feed = appcast::verified(buffer.data(), *settings.key);
    if (!feed)
        return failed(UpdateFailure::untrusted, "the feed's signature is missing or wrong");
    const auto newest = appcast::newest(*feed, settings.current);
    if (!newest)
        return failed(UpdateFailure::untrusted, newest.error());
    if (*newest)
        return **newest;
    return updateMessage::UpToDate{};
}

/// Tells of each percent once.
auto progressOf(std::int64_t length)
{
    return [length, last = -1](std::int64_t count) mutable {
        constexpr int percent = 100;
        if (const auto next = static_cast<int>(count * percent / length); next > std::exchange(last, next))
            tell(updateMessage::Progress{static_cast<double>(next) / percent});
    };
}

/// By the kind of the package, which programs that install packages go by.
QString packageName(const UpdateOffer& offer)
{
    const auto name = QUrl{QString::fromStdString(offer.url)}.fileName();
    for (const auto* ending : {".deb", ".rpm", ".flatpak", ".AppImage"})
        if (name.endsWith(QLatin1String{ending}))
            return QString::fromStdString(Brand::appName()) + QLatin1String{ending};
    return {};
}

Answer fetch(const Settings& settings, const UpdateOffer& offer)
{
    const auto name = packageName(offer);
    if (name.isEmpty())
        return failed(UpdateFailure::untrusted, "no kind of package that is known: " + offer.url);
    if (offer.length <= 0 || offer.length > packageLimit)
        return failed(UpdateFailure::tooLarge, std::to_string(offer.length) + " bytes");
    QDir{}.mkpath(settings.folder);
    QFile file{settings.folder + u'/' + name};
    file.remove(); // of an earlier download
    if (!file.open(QIODevice::ReadWrite | QIODevice::NewOnly))
        return failed(UpdateFailure::notSaved, file.errorString().toStdString());
    const auto refused = [&](const Failed& why) {
        file.remove();
        return std::unexpected{why};
    };
    const auto url = QUrl{QString::fromStdString(offer.url)};
    const auto done = download(url, file, settings.limits(offer.length, 30min), progressOf(offer.length));
    if (!done)
        return refused(done.error());
    file.seek(0);
    if (!settings.key->hasSigned(file.readAll(), QByteArray::fromStdString(offer.signature)))
        return refused({UpdateFailure::untrusted, "the package's signature is wrong"});
    if (!file.flush())
        return refused({UpdateFailure::notSaved, file.errorString().toStdString()});
    return updateMessage::Package{file.fileName().toStdString()};
}

Answer fetchOffered(const Settings& settings)
{
    QFile input;
    constexpr qint64 longest = 2 * feedLimit;
    std::ignore = input.open(stdin, QIODevice::ReadOnly);
    const auto message = updateMessageFrom(input.read(longest).toStdString());
    const auto* const offer = message ? std::get_if<UpdateOffer>(&*message) : nullptr;
    return offer ? fetch(settings, *offer) : failed(UpdateFailure::untrusted, "expected an offer");
}

/// What reads foreign bytes gets no further than it needs to.
void confine()
{
    constexpr rlim_t largestFile = packageLimit + feedLimit;
    const rlimit none{0, 0}, files{largestFile, largestFile};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    setrlimit(RLIMIT_CORE, &none);
    setrlimit(RLIMIT_FSIZE, &files);
    umask(S_IRWXG | S_IRWXO);
}

std::optional<Settings> readSettings(const QCommandLineParser& parser)
{
    const auto given = [&](const char* option, const char* key) {
        return parser.isSet(option) ? parser.value(option) : QString::fromStdString(propertyListText(key).value_or(""));
    };
    Settings settings{.feed = QUrl{given("feed", "SUFeedURL")},
        .key = SigningKey::read(given("key", "SUPublicEDKey").toLatin1()),
        .current = parser.value("current").toStdString(),
        .folder = parser.value("into")};
    if (parser.isSet("limit"))
        settings.limit = Seconds{parser.value("limit").toDouble()};
    if (parser.isSet("authority"))
        settings.authorities = QSslCertificate::fromPath(parser.value("authority"));
    if (settings.feed.isEmpty() || !settings.key)
        return {};
    return settings;
}

} // namespace

int main(int argc, char** argv)
{
    confine();
    const QCoreApplication application{argc, argv};
    QCommandLineParser parser;
    parser.addPositionalArgument("verb", "check, or download the package of the offer on standard input");
    parser.addOptions({{"feed", "The address of the feed.", "URL"},
        {"key", "The public key of its makers.", "BASE64"},
        {"current", "The version that there is.", "VERSION", VESPRA_VERSION},
        {"into", "The folder of the package.", "FOLDER"},
        {"limit", "How long a download may take.", "SECONDS"},
        {"authority", "Certificates to trust in the place of the system's.", "FILE"}});
    parser.addHelpOption();
    parser.process(application);
    const auto verb = parser.positionalArguments().value(0);
    const auto settings = readSettings(parser);
    if (!settings || (verb != "check" && (verb != "download" || settings->folder.isEmpty()))) {
        std::fputs("vespra-update: expected check, or download --into FOLDER, a feed and a key\n", stderr);
        return 2;
    }
    const auto answer = verb == "check" ? check(*settings) : fetchOffered(*settings);
    tell(answer ? *answer : UpdateMessage{answer.error()});
    return answer ? 0 : 1;
}
