#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "App/Wording/SystemText.h"
#include "App/Wording/Translations.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

#include <fstream>
#include <regex>

namespace vespra {

namespace {

    /// What is shown here for the literal `text`.
    std::string here(std::string_view text) { return std::string{systemText(text)}; }

    template <class Value> struct Words {
        Value value;
        const char* text;
    };

    TEST(Wording, SaysWhyASessionEnded)
    {
        struct Row {
            EndReason reason;
            const char *brief, *title, *symbol;
        };
        const char* const check = "checkmark.circle.fill";
        const std::vector<Row> rows{
            {end::LowBattery{5}, "Battery at 5%", "Session ended — battery at 5%", "battery.25percent"},
            {end::StoppedByUser{}, "Stopped", "Session ended", check},
            {end::TimeElapsed{}, "Time is up", "Session ended — time is up", check},
            {end::SystemSleep{}, "Mac went to sleep", "Session ended", check},
            {end::AppTerminated{}, "App quit", "Session ended", check},
            {end::ChargerDisconnected{}, "Charger unplugged", "Session ended — charger unplugged", "powerplug"},
            {end::BatteryTimeLimit{},
                "Battery time limit reached",
                "Session ended — battery time limit reached",
                "battery.25percent"},
            {end::ClosedLidTimeLimit{},
                "4-hour closed-lid limit reached",
                "Session ended — 4-hour limit reached",
                "clock.badge.exclamationmark"},
            {end::Overheating{}, "Mac too hot", "Session ended — Mac too hot", "thermometer.high"},
            {end::AgentsFinished{}, "Agents finished", "Session ended — agents finished", check},
            {end::SafetyCapReached{},
                "Safety limit reached",
                "Session ended — safety limit reached",
                "clock.badge.exclamationmark"},
        };
        ASSERT_EQ(rows.size(), std::variant_size_v<EndReason>);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto& row = rows[i];
            SCOPED_TRACE(row.title);
            EXPECT_EQ(row.reason.index(), i);
            EXPECT_EQ(shortDescription(row.reason), here(row.brief));
            EXPECT_EQ(notificationTitle(row.reason), here(row.title));
            EXPECT_EQ(symbol(row.reason), row.symbol);
            EXPECT_EQ(notificationBody(row.reason),
                here(row.reason == EndReason{end::Overheating{}} ? "Closed-lid mode is off so the Mac can cool down."
                                                                 : "Your Mac can go to sleep again."));
        }
    }

    TEST(Wording, SaysWhyAStartWasRefused)
    {
        const std::vector<Words<StartRefusal>> rows{
            {refusal::BatteryTooLow{20}, "Battery at 20%, too low to start."},
            {refusal::AlreadyActive{}, "A session is already running."},
            {refusal::ChargerRequired{}, "Plug in the charger to start."},
            {refusal::TooHot{}, "Mac is too hot for closed-lid mode."},
        };
        ASSERT_EQ(rows.size(), std::variant_size_v<StartRefusal>);
        for (const auto& row : rows)
            EXPECT_EQ(message(row.value), here(row.text));
    }

    TEST(Wording, SaysWhatClosedLidModeWouldDo)
    {
        using Reason = ClosedLidUnsupportedReason;
        const std::vector<Words<ClosedLidStatus>> rows{
            {closedLid::Unsupported{Reason::noBuiltInDisplay}, "Requires a MacBook"},
            {closedLid::Unsupported{Reason::unsignedBuild}, "Unavailable in this build"},
            {closedLid::Blocked{blocker::BatteryTooLow{9}}, "Battery too low (9%)"},
            {closedLid::Blocked{blocker::ChargerRequired{}}, "Plug in the charger"},
            {closedLid::Blocked{blocker::TooHot{}}, "Mac too hot"},
            {closedLid::NotConfigured{}, "Not set up"},
            {closedLid::AwaitingApproval{}, "Waiting for your approval"},
            {closedLid::HelperFailed{}, "Component not responding"},
            {closedLid::Off{}, "Stay awake with the lid closed"},
            {closedLid::Ready{}, "Ready at start"},
            {closedLid::Verifying{}, "Checking\u2026"},
            {closedLid::CanCloseLid{}, "You can close the lid"},
        };
        ASSERT_EQ(rows.size(),
            std::variant_size_v<ClosedLidStatus>
                - 2 + rawValues<Reason>.size() + std::variant_size_v<ClosedLidBlocker>);
        for (const auto& row : rows)
            EXPECT_EQ(message(row.value), here(row.text));
    }

    TEST(Wording, SaysWhatTheEndActionsDo)
    {
        struct Row {
            AgentEndAction action;
            const char *explanation, *body;
        };
        const std::vector<Row> rows{
            {AgentEndAction::letSleep,
                "The Mac goes back to its usual sleep settings.",
                "Your Mac can go to sleep again."},
            {AgentEndAction::sleepNow,
                "The Mac goes to sleep right away, after a 1-minute countdown you can cancel.",
                "The Mac will sleep in 1 minute."},
            {AgentEndAction::shutDown,
                "The Mac shuts down after a 1-minute countdown you can cancel. Unsaved work in other apps will be "
                "lost.",
                "The Mac will shut down in 1 minute. Save your work."},
        };
        ASSERT_EQ(rows.size(), rawValues<AgentEndAction>.size());
        for (const auto& row : rows) {
            EXPECT_EQ(explanation(row.action), here(row.explanation));
            EXPECT_EQ(notificationBody(row.action), here(row.body));
        }
    }

    TEST(Wording, NamesModesAndGuardrails)
    {
        const std::vector<Words<SessionMode>> modes{
            {SessionMode::timer, "Timer"},
            {SessionMode::until, "Until"},
            {SessionMode::unlimited, "Unlimited"},
            {SessionMode::agent, "Agent"},
        };
        ASSERT_EQ(modes.size(), rawValues<SessionMode>.size());
        for (const auto& row : modes)
            EXPECT_EQ(title(row.value), row.text);

        qputenv("LC_ALL", "C"); // before the user's format is made
        const std::vector<Words<ActiveGuardrail>> guardrails{
            {guardrail::LowBattery{20}, "Stops at 20% battery"},
            {guardrail::BatteryTimeLimit{5400s}, "1h 30m max on battery"},
            {guardrail::ClosedLidLimit{4h}, "4h max with lid closed"},
            {guardrail::ChargerRequired{}, "Charger required"},
            {guardrail::BatteryTimeLimit{-1s}, " max on battery"},
        };
        ASSERT_EQ(guardrails.size(), std::variant_size_v<ActiveGuardrail> + 1);
        for (const auto& row : guardrails)
            EXPECT_EQ(shortDescription(row.value), row.text);
    }

    bool speaksOfAMac(const std::string& text)
    {
        static const std::regex words{R"(\b(Macs?|MacBook|macOS|System Settings|menu bar)\b)"};
        return std::regex_search(text, words);
    }

    constexpr bool isMac = IS_MAC;

    TEST(SystemText, SpeaksOfAMacOnlyOnOne)
    {
        for (const char* literal : {"Requires a MacBook", "Time left in the menu bar", "Open System Settings"})
            EXPECT_EQ(here(literal) == literal, isMac) << literal;
        EXPECT_EQ(here("Mac went to sleep"), isMac ? "Mac went to sleep" : "Computer went to sleep");
        EXPECT_EQ(here("Your Mac is on fire"), "Your Mac is on fire");
    }

    /// The string literals of a source, adjacent ones joined; comments and lines of the preprocessor do not count.
    std::vector<std::string> literalsIn(std::istream& source)
    {
        std::vector<std::string> literals;
        std::string literal;
        bool isInside = false;
        for (std::string line; std::getline(source, line);) {
            if (line.starts_with('#'))
                continue;
            for (std::size_t i = 0; i < line.size(); ++i) {
                if (isInside && line[i] == '\\')
                    literal += line[++i];
                else if (line[i] == '"' && (isInside || line.compare(i ? i - 1 : 0, 3, "'\"'") != 0))
                    isInside = !isInside;
                else if (isInside)
                    literal += line[i];
                else if (line.compare(i, 2, "//") == 0)
                    break;
                else if (line[i] != ' ')
                    literals.push_back(std::exchange(literal, {}));
            }
        }
        return literals;
    }

    TEST(SystemText, KnowsEveryTextOfTheProgramsThatSpeaksOfAMac)
    {
        if (isMac)
            GTEST_SKIP() << "nothing to replace on a Mac";
        int count = 0;
        for (const char* folder : {"App", "Control"})
            for (const auto& entry : std::filesystem::recursive_directory_iterator{std::string{SOURCES "/"} + folder}) {
                const auto& path = entry.path();
                if ((path.extension() != ".cpp" && path.extension() != ".h") || path.parent_path().filename() == "macos"
                    || path.filename() == "SystemText.cpp")
                    continue;
                std::ifstream source{path};
                for (const auto& literal : literalsIn(source))
                    if (speaksOfAMac(literal)) {
                        ++count;
                        EXPECT_FALSE(speaksOfAMac(here(literal))) << path << " says: " << literal;
                    }
            }
        EXPECT_GE(count, 12);
    }

    TEST(Localized, PutsArgumentsInPlaceAndNothingElse)
    {
        EXPECT_EQ(localized("%2 before %1, 100%", {"a%2", "b"}), "b before a%2, 100%");
        EXPECT_EQ(localized("%3 stays, %n too", {"a"}), "%3 stays, %n too");
    }

    class Translated : public testing::Test {
    protected:
        std::expected<void, std::string> install(const QStringList& languages)
        {
            return installTranslation(application_, languages, QString::fromStdString(folder_.path().string()));
        }
        void write(const char* file, std::string_view text) { std::ofstream{folder_ / file} << text; }

        int count_ = 1;
        char name_[5] = "test";
        char* arguments_[2] = {name_, nullptr};
        QCoreApplication application_{count_, arguments_};
        TemporaryDirectory folder_;
    };

    TEST_F(Translated, SpeaksTheFirstLanguageThatIsThere)
    {
        write("de.json", R"({"Time is up": "Die Zeit ist um", "Battery at %1%": "Akku bei %1 %"})");
        write("fr.json", R"({"Time is up": "Temps écoulé"})");
        ASSERT_TRUE(install({"it-IT", "de-Latn-AT", "fr"}));
        EXPECT_EQ(shortDescription(end::TimeElapsed{}), "Die Zeit ist um");
        EXPECT_EQ(shortDescription(end::LowBattery{5}), "Akku bei 5 %");
        EXPECT_EQ(shortDescription(end::AppTerminated{}), "App quit");
    }

    TEST_F(Translated, SpeaksEnglishToWhoPrefersIt)
    {
        write("de.json", R"({"Time is up": "Die Zeit ist um"})");
        ASSERT_TRUE(install({"en-GB", "de"}));
        EXPECT_EQ(shortDescription(end::TimeElapsed{}), "Time is up");
    }

    TEST_F(Translated, NamesAFileThatIsNoTranslation)
    {
        for (const char* text : {"", "[]", R"({"Time is up": 1})"}) {
            write("de.json", text);
            const auto installed = install({"de"});
            ASSERT_FALSE(installed) << text;
            EXPECT_THAT(installed.error(), testing::HasSubstr("/de.json: expected"));
        }
    }

} // namespace

} // namespace vespra
