#include "ControlProtocol/Arguments.h"
#include "ControlProtocol/Guess.h"

#include <gtest/gtest.h>

#include <map>

using namespace vespra;

namespace {

TEST(Arguments, LengthsAreSumsOfHoursMinutesAndSeconds)
{
    constexpr ClosedRange<Seconds> range{1min, 24h};
    const std::map<std::string, Seconds> taken{
        {"25m", 25min}, {"1h30m", 90min}, {"1h30m15s", 90min + 15s}, {"90s", 90s}, {"60s", 1min}, {"24h", 24h}};
    for (const auto& [text, expected] : taken)
        EXPECT_EQ(arguments::length(text, range), expected) << text;
    const char* const tooLarge = "99999999999999999999h";
    for (const char* text : {"59s", "24h1s", "", "25", "m", "-25m", "30m1h", "10m10m", "1.5h", "25m ", tooLarge})
        EXPECT_FALSE(arguments::length(text, range)) << text;
    EXPECT_EQ(
        arguments::length("2d", range).error(), "expected a length from 1m to 24h, such as 25m or 1h30m, not \"2d\"");
    EXPECT_EQ(arguments::length("1h", {0s, 15min}).error(),
        "expected a length from 0s to 15m, such as 2m or 30s, not \"1h\"");
}

TEST(Arguments, TimesOfDayHaveTwoDigitsOfMinutes)
{
    EXPECT_EQ(arguments::timeOfDay("18:30"), (TimeOfDay{18, 30}));
    EXPECT_EQ(arguments::timeOfDay("6:05"), (TimeOfDay{6, 5}));
    EXPECT_EQ(arguments::timeOfDay("00:00"), (TimeOfDay{0, 0}));
    EXPECT_EQ(arguments::timeOfDay("23:59"), (TimeOfDay{23, 59}));
    for (const char* text : {"", "18", "18:3", "18:300", "24:00", "12:60", "-1:00", "12:-1", "ab:cd", "18:30 "})
        EXPECT_FALSE(arguments::timeOfDay(text)) << text;
}

TEST(Guess, IsTheNearestWordThatIsAnother)
{
    const std::vector<std::string> known{"start", "status", "stop", "set", "--headless"};
    for (const auto& [word, nearest] : std::map<std::string, std::optional<std::string>>{{"statsu", "status"},
             {"star", "start"},
             {"stops", "stop"},
             {"-headless", "--headless"},
             {"get", "set"},
             {"start", {}},
             {"begin", {}},
             {"xy", {}},
             {"", {}}})
        EXPECT_EQ(guess(word, known), nearest) << word;
}

} // namespace
