#include "Control/Arguments/Arguments.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

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

TEST(Arguments, SettingsFilesNameTheirFault)
{
    const TemporaryDirectory directory;
    const auto file = (directory / "settings.json").string();
    const auto read = [&](const char* content) {
        putText(file, content);
        return arguments::settingsFile(file);
    };
    EXPECT_EQ(read(R"({"agentSafetyCap":null})")->agentSafetyCap, std::nullopt);
    EXPECT_EQ(read("{").error(), file + ": expected JSON");
    EXPECT_EQ(read("[]").error(), file + ": expected an object");
    EXPECT_EQ(read(R"({"agentSafetyCap":"x"})").error(), file + ": agentSafetyCap: expected a number");
    EXPECT_EQ(
        arguments::settingsFile(file + ".none").error(), "cannot read " + file + ".none: No such file or directory");
}

} // namespace
