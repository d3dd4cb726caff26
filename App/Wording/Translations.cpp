#include "App/Wording/Translations.h"

#include "App/Wording/Localized.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QTranslator>

#include <algorithm>

namespace vespra {

namespace {

    using Texts = QHash<QByteArray, QString>;

    class Translation final : public QTranslator {
    public:
        Translation(Texts texts, QObject* parent)
            : QTranslator{parent}
            , texts_{std::move(texts)}
        {
        }

        bool isEmpty() const override { return texts_.isEmpty(); }

        QString translate(const char* context, const char* key, const char*, int) const override
        {
            return context == std::string_view{translationContext} ? texts_.value(key) : QString{};
        }

    private:
        Texts texts_;
    };

    std::expected<Texts, std::string> readTexts(QFile& file)
    {
        const auto failure
            = [&](const char* problem) { return std::unexpected{file.fileName().toStdString() + ": " + problem}; };
        if (!file.open(QIODevice::ReadOnly))
            return failure("cannot be read");
        const auto document = QJsonDocument::fromJson(file.readAll());
        if (!document.isObject())
            return failure("expected a JSON object of texts");
        const auto object = document.object();
        Texts texts;
        for (auto entry = object.begin(); entry != object.end(); ++entry) {
            if (!entry->isString())
                return failure("expected a text under every key");
            texts.insert(entry.key().toUtf8(), entry->toString());
        }
        return texts;
    }

    /// "pt-Latn-BR", "pt-Latn", "pt".
    QStringList fromSpecificToGeneral(QString language)
    {
        QStringList forms{language};
        for (auto dash = language.lastIndexOf(u'-'); dash > 0; dash = language.lastIndexOf(u'-')) {
            language.truncate(dash);
            forms << language;
        }
        return forms;
    }

} // namespace

std::expected<void, std::string> installTranslation(
    QCoreApplication& application, const QStringList& languages, const QString& folder)
{
    for (const auto& language : languages)
        for (const auto& form : fromSpecificToGeneral(language)) {
            if (form == u"en" || form == u"C")
                return {};
            QFile file{folder + u'/' + form + QStringLiteral(".json")};
            if (!file.exists())
                continue;
            auto texts = readTexts(file);
            if (!texts)
                return std::unexpected{texts.error()};
            application.installTranslator(new Translation{std::move(*texts), &application});
            return {};
        }
    return {};
}

std::expected<void, std::string> installTranslation(QCoreApplication& application)
{
    return installTranslation(application, QLocale::system().uiLanguages(), QStringLiteral(":/translations"));
}

} // namespace vespra
