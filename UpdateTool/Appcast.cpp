#include "UpdateTool/Appcast.h"

#include "Core/Updates/UpdateVersion.h"

#include <QRegularExpression>
#include <QStringList>
#include <QSysInfo>
#include <QUrl>
#include <QXmlStreamReader>

namespace vespra::appcast {

namespace {

    QString sparkle() { return QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle"); }

    /// "linux" for packages that every machine takes, otherwise with the machine's kind: "linux-x64", "linux-arm64".
    bool isForThisSystem(QStringView system)
    {
        const auto machine = QSysInfo::currentCpuArchitecture();
        const auto kind = machine == QStringLiteral("x86_64") ? QStringLiteral("x64") : machine;
        return system == QStringLiteral("linux") || system == QStringLiteral("linux-") + kind;
    }

    QString withSpacesJoined(const QString& text)
    {
        QStringList lines;
        for (const auto& line : text.split(u'\n'))
            lines << line.simplified();
        auto joined = lines.join(u'\n');
        return joined.replace(QRegularExpression{QStringLiteral("\n{3,}")}, QStringLiteral("\n\n")).trimmed();
    }

    /// The notes of one item, of which other forms and languages are left out.
    QString readNotes(QXmlStreamReader& xml)
    {
        const auto format = xml.attributes().value(sparkle(), QStringLiteral("format")).toString();
        const auto text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        const bool isPlain = format == QStringLiteral("plain-text") || format == QStringLiteral("markdown");
        return isPlain ? withSpacesJoined(text) : plainText(text);
    }

    struct Item {
        UpdateOffer offer;
        bool hasPackage = false;
        /// Of a channel that has to be chosen, or only to be read about.
        bool isForOthers = false;
    };

    void readEnclosure(QXmlStreamReader& xml, Item& item)
    {
        const auto attributes = xml.attributes();
        const auto own = [&](const char* name) {
            return attributes.value(sparkle(), QLatin1String{name}).toString().toStdString();
        };
        if (isForThisSystem(attributes.value(sparkle(), QStringLiteral("os"))) && !item.hasPackage) {
            item.hasPackage = true;
            auto& offer = item.offer;
            offer.url = attributes.value(QStringLiteral("url")).toString().toStdString();
            offer.length = attributes.value(QStringLiteral("length")).toLongLong();
            offer.signature = own("edSignature");
            // Older feeds have the versions here.
            if (const auto version = own("version"); !version.empty())
                offer.version = version;
            if (const auto version = own("shortVersionString"); !version.empty())
                offer.displayVersion = version;
        }
        xml.skipCurrentElement();
    }

    Item readItem(QXmlStreamReader& xml)
    {
        Item item;
        while (xml.readNextStartElement()) {
            const auto isSparkles = xml.namespaceUri() == sparkle();
            const auto name = xml.name();
            if (name == QStringLiteral("enclosure"))
                readEnclosure(xml, item);
            else if (isSparkles && name == QStringLiteral("version"))
                item.offer.version = xml.readElementText().trimmed().toStdString();
            else if (isSparkles && name == QStringLiteral("shortVersionString"))
                item.offer.displayVersion = xml.readElementText().trimmed().toStdString();
            else if (isSparkles && name == QStringLiteral("channel"))
                item.isForOthers = !xml.readElementText().trimmed().isEmpty() || item.isForOthers;
            else if (isSparkles && name == QStringLiteral("informationalUpdate")) {
                item.isForOthers = true;
                xml.skipCurrentElement();
            } else if (!isSparkles && name == QStringLiteral("description"))
                item.offer.notes = readNotes(xml).toStdString();
            else
                xml.skipCurrentElement();
        }
        if (item.offer.displayVersion.empty())
            item.offer.displayVersion = item.offer.version;
        return item;
    }

    /// Only what can be fetched and verified. Beta versions and the like come through channels, which nobody here
    /// follows.
    bool isUsable(const Item& item)
    {
        const auto& offer = item.offer;
        return item.hasPackage && !item.isForOthers && !offer.version.empty() && offer.length > 0
            && !offer.signature.empty() && QUrl{QString::fromStdString(offer.url)}.scheme() == QStringLiteral("https");
    }

} // namespace

std::optional<QByteArray> verified(const QByteArray& feed, const SigningKey& key)
{
    const QByteArray mark = "<!-- sparkle-signatures:";
    const auto end = feed.lastIndexOf(mark);
    if (end < 0)
        return {};
    static const QRegularExpression block{
        QStringLiteral(R"(\A\s*edSignature: ([A-Za-z0-9+/=]+)\s+length: ([0-9]+)\s*-->\s*\z)")};
    const auto found = block.match(QString::fromLatin1(feed.mid(end + mark.size())));
    auto content = feed.left(end);
    if (!found.hasMatch() || found.captured(2).toLongLong() != content.size()
        || !key.hasSigned(content, found.captured(1).toLatin1()))
        return {};
    return content;
}

std::expected<std::optional<UpdateOffer>, std::string> newest(const QByteArray& feed, std::string_view current)
{
    QXmlStreamReader xml{feed};
    std::optional<UpdateOffer> best;
    const auto isNewer = [&](const UpdateOffer& offer) {
        return compareVersions(offer.version, best ? std::string_view{best->version} : current) > 0;
    };
    if (!xml.readNextStartElement() || xml.name() != QStringLiteral("rss"))
        return std::unexpected{"the feed is no RSS"};
    while (xml.readNextStartElement()) // channels
        while (xml.readNextStartElement()) {
            if (xml.name() != QStringLiteral("item")) {
                xml.skipCurrentElement();
                continue;
            }
            if (const auto item = readItem(xml); isUsable(item) && isNewer(item.offer))
                best = item.offer;
        }
    if (xml.hasError())
        return std::unexpected{"the feed is malformed: " + xml.errorString().toStdString()};
    return best;
}

QString plainText(const QString& html)
{
    static const QRegularExpression hidden{QStringLiteral("<(style|script|head)\\b.*?</\\1>|<!--.*?-->"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption};
    static const QRegularExpression item{QStringLiteral("<li\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption};
    static const QRegularExpression block{
        QStringLiteral("<(br|/p|/h[1-6]|/div|/ul|/ol|/tr)\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption};
    static const QRegularExpression tag{QStringLiteral("<[^>]*>")};
    auto text = QString{html}.remove(hidden).simplified();
    text.replace(item, QStringLiteral("\n\u2022 ")).replace(block, QStringLiteral("\n")).remove(tag);
    // The ampersand last, so that nothing is read twice.
    for (const auto& [entity, sign] :
        {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&nbsp;", " "}, {"&amp;", "&"}})
        text.replace(QLatin1String{entity}, QLatin1String{sign});
    return withSpacesJoined(text);
}

} // namespace vespra::appcast
