#include "App/Wording/Format.h"

#include <QTime>

#include <cmath>

namespace vespra {

namespace {

    /// The units stay within what every formatter can count.
    constexpr Seconds longest = std::chrono::hours{1'000'000};

    QLocale userLanguage()
    {
        const auto languages = QLocale::system().uiLanguages();
        return languages.isEmpty() ? QLocale::system() : QLocale{languages.first()};
    }

    DurationUnits briefUnits(const QLocale& words)
    {
        const bool abbreviates = words.language() == QLocale::English || words.language() == QLocale::C;
        return abbreviates ? DurationUnits::abbreviated : DurationUnits::brief;
    }

} // namespace

Format::Format(const QLocale& words, const QLocale& clock)
    : words_{words}
    , clock_{clock}
{
}

const Format& Format::current()
{
    static const Format format{userLanguage(), QLocale::system()};
    return format;
}

std::string Format::briefDuration(Seconds length) const { return duration(length, brief_, briefUnits(words_)); }

std::string Format::spokenDuration(Seconds length) const { return duration(length, spoken_, DurationUnits::full); }

std::string Format::duration(Seconds length, KeptFormatter& kept, DurationUnits units) const
{
    // Written so that what is not a number fails too.
    if (!(length >= 0s && length <= longest))
        return {};
    if (!kept)
        kept = makeDurationFormatter(units, words_);
    return kept->text(std::chrono::floor<std::chrono::minutes>(length));
}

std::string Format::time(TimeOfDay time, const Calendar& calendar, Instant reference) const
{
    const auto hour = static_cast<int>(time.hour()), minute = static_cast<int>(time.minute());
    return this->time(calendar.dateOnDay(reference, hour, minute), calendar);
}

std::string Format::time(Instant instant, const Calendar& calendar) const
{
    const std::chrono::milliseconds sinceMidnight = calendar.sinceMidnight(instant);
    const auto time = QTime::fromMSecsSinceStartOfDay(static_cast<int>(sinceMidnight.count()));
    // The locale without a country shows seconds even in its short form.
    const auto text = clock_.language() == QLocale::C ? time.toString(QStringLiteral("HH:mm"))
                                                      : clock_.toString(time, QLocale::ShortFormat);
    return text.toStdString();
}

std::string timeText(Instant instant) { return Format::current().time(instant, Calendar::current()); }

} // namespace vespra
