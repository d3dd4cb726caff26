#include "Core/Session/TimeOfDay.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

Instant at(const char* text) { return Instant::fromISO8601(text).value(); }

TEST(TimeOfDay, StepsToTheNextQuarterAcrossMidnight)
{
    struct Row {
        TimeOfDay from, forward, backward;
    };
    for (const auto& row : std::vector<Row>{
             {{10, 7}, {10, 15}, {10, 0}},
             {{10, 15}, {10, 30}, {10, 0}},
             {{23, 50}, {0, 0}, {23, 45}},
             {{0, 0}, {0, 15}, {23, 45}},
             {{0, 1}, {0, 15}, {0, 0}},
             {{23, 45}, {0, 0}, {23, 30}},
         }) {
        SCOPED_TRACE(testing::Message() << row.from.hour() << ":" << row.from.minute());
        EXPECT_EQ(row.from.stepped(true), row.forward);
        EXPECT_EQ(row.from.stepped(false), row.backward);
    }
}

TEST(TimeOfDay, NextOccurrenceIsStrictlyLaterAndAtMostADayAhead)
{
    constexpr auto utc = "UTC", paris = "Europe/Paris";
    struct Row {
        const char* rule;
        const char* zone;
        TimeOfDay time;
        const char *after, *expected; // in UTC
    };
    for (const auto& row : std::vector<Row>{
             {"later today", utc, {18, 30}, "2026-01-01T18:29:59Z", "2026-01-01T18:30:00Z"},
             {"the same second is tomorrow", utc, {18, 30}, "2026-01-01T18:30:00Z", "2026-01-02T18:30:00Z"},
             {"a fraction later is tomorrow", utc, {18, 30}, "2026-01-01T18:30:00.5Z", "2026-01-02T18:30:00Z"},
             {"midnight", utc, {0, 0}, "2026-01-01T00:00:00Z", "2026-01-02T00:00:00Z"},
             {"across the new year", utc, {0, 15}, "2025-12-31T23:59:59Z", "2026-01-01T00:15:00Z"},
             {"local, not UTC", "America/New_York", {18, 30}, "2026-01-01T23:00:00Z", "2026-01-01T23:30:00Z"},
             // Paris, 29 March 2026: 02:00 CET is followed by 03:00 CEST, at 01:00 UTC.
             {"of a skipped time the next", paris, {2, 30}, "2026-03-29T00:30:00Z", "2026-03-29T01:00:00Z"},
             {"after the skip the next day", paris, {2, 30}, "2026-03-29T01:00:00Z", "2026-03-30T00:30:00Z"},
             {"the short day", paris, {4, 0}, "2026-03-28T03:00:00Z", "2026-03-29T02:00:00Z"},
             // Paris, 25 October 2026: 03:00 CEST is followed by 02:00 CET, at 01:00 UTC.
             {"of a repeated time the first", paris, {2, 30}, "2026-10-25T00:00:00Z", "2026-10-25T00:30:00Z"},
             {"between the two a day ahead", paris, {2, 30}, "2026-10-25T00:45:00Z", "2026-10-26T00:45:00Z"},
             {"during the second the next day", paris, {2, 30}, "2026-10-25T01:30:00Z", "2026-10-26T01:30:00Z"},
             {"never more than 24 hours", paris, {3, 0}, "2026-10-24T01:00:00Z", "2026-10-25T01:00:00Z"},
             {"by rule, beyond what files list", paris, {12, 0}, "2040-07-01T08:00:00Z", "2040-07-01T10:00:00Z"},
             {"also in winter", paris, {12, 0}, "2040-01-01T08:00:00Z", "2040-01-01T11:00:00Z"},
             {"south of the equator", "Australia/Sydney", {12, 0}, "2050-01-01T00:00:00Z", "2050-01-01T01:00:00Z"},
             {"a skip at midnight", "America/Havana", {0, 30}, "2026-03-08T03:00:00Z", "2026-03-08T05:00:00Z"},
             {"before midnight, by rule", "America/Nuuk", {0, 30}, "2040-03-25T00:15:00Z", "2040-03-25T01:30:00Z"},
             {"half an hour", "Australia/Lord_Howe", {2, 15}, "2026-10-03T15:00:00Z", "2026-10-03T15:30:00Z"},
         }) {
        SCOPED_TRACE(row.rule);
        const auto calendar = Calendar::inZone(row.zone).value();
        EXPECT_EQ(row.time.nextOccurrence(at(row.after), calendar).iso8601(), row.expected);
    }
}

} // namespace
