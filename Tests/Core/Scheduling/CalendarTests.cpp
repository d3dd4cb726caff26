#include "Core/Session/TimeOfDay.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace vespra;

namespace {

Instant at(const char* text) { return Instant::fromISO8601(text).value(); }

/// What the system's own program shows at `instant`, as GNU or as BSD wants to be asked: "09:30:00".
std::string shownByDate(Instant instant)
{
    const auto seconds = std::to_string(std::chrono::floor<std::chrono::seconds>(instant.since1970()).count());
    FILE* date = popen(("date -d @" + seconds + " +%T 2>/dev/null || date -r " + seconds + " +%T").c_str(), "r");
    char shown[9] = "";
    EXPECT_TRUE(std::fgets(shown, sizeof shown, date));
    pclose(date);
    return shown;
}

TEST(Calendar, AgreesWithTheSystemsDateInEveryZoneAndFormOfTZ)
{
    const auto calendar = Calendar::current();
    std::istringstream zones{"Asia/Kathmandu :America/New_York America/Nuuk America/Godthab America/Scoresbysund "
                             "Asia/Gaza Africa/Casablanca Pacific/Chatham CET-1CEST CET-1CEST,M3.5.0,M10.5.0/3 "
                             "<-02>2<-01>,M3.5.0/-1,M10.5.0/0 <+0330>-3:30 /usr/share/zoneinfo/Asia/Tokyo "
                             ":/usr/share/zoneinfo/Australia/Lord_Howe : Mars/Olympus"};
    for (std::string zone; zones >> zone;)
        for (const char* after : {"2026-01-01T00:00:01Z", "2040-03-24T23:00:00Z", "2090-08-01T00:00:00Z"}) {
            SCOPED_TRACE(testing::Message() << "TZ=" << zone << " after " << after);
            setenv("TZ", zone.c_str(), 1);
            const auto next = TimeOfDay{9, 30}.nextOccurrence(at(after), calendar);
            EXPECT_EQ(shownByDate(next), "09:30:00");
            EXPECT_EQ(calendar.sinceMidnight(next), 9h + 30min);
            const auto named = Calendar::inZone(zone).value_or(calendar);
            EXPECT_EQ(TimeOfDay(9, 30).nextOccurrence(at(after), named).iso8601(), next.iso8601());
        }
    unsetenv("TZ");
    EXPECT_EQ(shownByDate(TimeOfDay(9, 30).nextOccurrence(at("2026-07-01T12:00:00Z"), calendar)), "09:30:00");
}

TEST(Instant, ReadsAndWritesISO8601)
{
    EXPECT_EQ(at("2026-01-31T10:15:00+01:00").iso8601(), "2026-01-31T09:15:00Z");
    EXPECT_EQ(at("2026-01-31T09:15:00.999Z").iso8601(), "2026-01-31T09:15:00Z");
    std::istringstream wrong{"2026-01-31 2026-01-31T09:15:00 2026-01-31T09:15:00Zx 2026-13-01T00:00:00Z "
                             "2026-01-31T25:00:00Z 9999-01-01T00:00:00Z yesterday"};
    for (std::string text; wrong >> text;)
        EXPECT_FALSE(Instant::fromISO8601(text)) << text;
    EXPECT_FALSE(Instant::fromISO8601(""));
}

TEST(Instant, SumsOfDecimalFractionsCompareAsTheyRead)
{
    EXPECT_EQ(Instant{} + Seconds{0.1} + Seconds{0.2}, Instant{} + Seconds{0.3});
    EXPECT_EQ(at("2026-01-01T00:00:00Z").sinceReferenceDate(), Seconds{788918400});
    EXPECT_GT(Instant{} + Seconds{1e300}, at("2199-01-01T00:00:00Z"));
    EXPECT_LT(Instant{} + Seconds{-1e300}, at("1700-01-02T00:00:00Z"));
}

} // namespace
