#include "App/Wording/Format.h"

#include <gtest/gtest.h>

#include <limits>

namespace vespra {

namespace {

    Instant at(const char* text) { return Instant::fromISO8601(text).value(); }

    Format formatIn(const char* locale)
    {
        return Format{QLocale{QLatin1String{locale}}, QLocale{QLatin1String{locale}}};
    }

    /// Locale data has spaces that do not break, more of them with each edition.
    std::string withPlainSpaces(const std::string& text)
    {
        return QString::fromStdString(text).simplified().toStdString();
    }

    TEST(Format, WritesDurationsInHoursAndWholeMinutes)
    {
        struct Row {
            double seconds;
            const char *brief, *spoken;
        };
        const auto english = formatIn("en_US"), noLanguage = formatIn("C");
        for (const auto& row : std::vector<Row>{
                 {0, "0m", "0 minutes"},
                 {59.999, "0m", "0 minutes"},
                 {60, "1m", "1 minute"},
                 {3599, "59m", "59 minutes"},
                 {3600, "1h", "1 hour"},
                 {3660, "1h 1m", "1 hour, 1 minute"},
                 {5400, "1h 30m", "1 hour, 30 minutes"},
                 {86400, "24h", "24 hours"},
                 {-1, "", ""},
                 {std::numeric_limits<double>::infinity(), "", ""},
                 {std::numeric_limits<double>::quiet_NaN(), "", ""},
                 {1e300, "", ""},
             }) {
            SCOPED_TRACE(row.seconds);
            for (const auto* format : {&english, &noLanguage}) {
                EXPECT_EQ(format->briefDuration(Seconds{row.seconds}), row.brief);
                EXPECT_EQ(format->spokenDuration(Seconds{row.seconds}), row.spoken);
            }
        }
    }

    TEST(Format, WritesBriefUnitsInOtherLanguages)
    {
        const auto french = formatIn("fr_FR");
        EXPECT_EQ(withPlainSpaces(french.spokenDuration(5400s)), "1 heure et 30 minutes");
        EXPECT_EQ(withPlainSpaces(french.briefDuration(5400s)), "1 h 30 min");
        EXPECT_EQ(withPlainSpaces(french.briefDuration(0s)), "0 min");
    }

    TEST(Format, WritesATimeOfDayAsTheLocaleDoesAndTheNextOneWhereTheDaySkipsIt)
    {
        struct Row {
            const char *rule, *locale;
            TimeOfDay time;
            const char *reference, *text;
        };
        // Paris, 29 March 2026: 02:00 is followed by 03:00. 25 October 2026: 02:00 to 03:00 comes twice.
        const auto paris = Calendar::inZone("Europe/Paris").value();
        for (const auto& row : std::vector<Row>{
                 {"half a day", "en_US", {18, 0}, "2026-06-01T12:00:00Z", "6:00 PM"},
                 {"midnight is twelve", "en_US", {0, 5}, "2026-06-01T12:00:00Z", "12:05 AM"},
                 {"24 hours", "de_DE", {18, 0}, "2026-06-01T12:00:00Z", "18:00"},
                 {"no language", "C", {6, 5}, "2026-06-01T12:00:00Z", "06:05"},
                 {"in the gap", "C", {2, 30}, "2026-03-29T12:00:00Z", "03:00"},
                 {"the day before", "C", {2, 30}, "2026-03-28T22:59:59Z", "02:30"},
                 {"the local day counts", "C", {2, 30}, "2026-03-28T23:00:00Z", "03:00"},
                 {"a repeated time", "C", {2, 30}, "2026-10-25T12:00:00Z", "02:30"},
             }) {
            SCOPED_TRACE(row.rule);
            EXPECT_EQ(withPlainSpaces(formatIn(row.locale).time(row.time, paris, at(row.reference))), row.text);
        }
    }

} // namespace

} // namespace vespra
