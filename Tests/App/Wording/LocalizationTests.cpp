#include "App/Wording/Localized.h"
#include "App/Wording/SystemText.h"
#include "App/Wording/Translations.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <QCoreApplication>

#include <fstream>
#include <regex>

namespace vespra {

namespace {

    constexpr bool isMac = IS_MAC;

    TEST(SystemText, SpeaksOfAMacOnlyOnOne)
    {
        EXPECT_EQ(systemText("Mac too hot"), isMac ? "Mac too hot" : "Computer too hot");
        EXPECT_EQ(systemText("Requires a MacBook"), isMac ? "Requires a MacBook" : "Requires a laptop with a lid");
        EXPECT_EQ(systemText("Mac too"), "Mac too");
        EXPECT_EQ(systemText("Your Mac is the last"), "Your Mac is the last");
    }

    /// The string literals of a source without its comments, adjacent ones joined.
    std::vector<std::string> literalsIn(std::istream& source)
    {
        static const std::regex token{R"re("((?:[^"\\]|\\.)*)"|'(?:[^'\\]|\\.)'|//.*|\S)re"};
        std::vector<std::string> literals{""};
        for (std::string line; std::getline(source, line);)
            for (std::sregex_iterator found{line.begin(), line.end(), token}, end; found != end; ++found) {
                if ((*found)[1].matched)
                    literals.back() += found->str(1);
                else if (!found->str().starts_with("//") && !literals.back().empty())
                    literals.emplace_back();
            }
        return literals;
    }

    TEST(SystemText, KnowsEveryTextOfTheProgramsThatSpeaksOfAMac)
    {
        if (isMac)
            GTEST_SKIP() << "on a Mac nothing is replaced";
        const std::regex mac{R"(\b(Mac|MacBook|macOS|System Settings|menu bar)\b)"};
        int count = 0;
        for (const char* folder : {"/App", "/Control", "/ControlProtocol"})
            for (const auto& entry : std::filesystem::recursive_directory_iterator{std::string{SOURCES} + folder}) {
                const auto& path = entry.path();
                if (path.extension() != ".cpp" || path.string().contains("/macos/") || path.stem() == "SystemText")
                    continue;
                std::ifstream source{path};
                for (const auto& literal : literalsIn(source)) {
                    count += std::regex_search(literal, mac);
                    EXPECT_FALSE(std::regex_search(std::string{systemText(literal)}, mac)) << path << ": " << literal;
                }
            }
        EXPECT_GE(count, 12) << "the search finds nothing any more";
    }

    TEST(Localized, PutsArgumentsInPlaceAndNothingElse)
    {
        EXPECT_EQ(localized("%2 before %1, 100%", {"a%2", "b"}), "b before a%2, 100%");
        EXPECT_EQ(localized("%3 stays, %n too", {"a"}), "%3 stays, %n too");
    }

    TEST(Translations, AreThoseOfTheFirstLanguageThatIsThere)
    {
        const TemporaryDirectory folder;
        std::ofstream{folder / "de.json"} << R"({"Time is up": "Die Zeit ist um", "Battery at %1%": "Akku: %1 %"})";
        std::ofstream{folder / "fr.json"} << R"({"Time is up": "Temps écoulé"})";
        std::ofstream{folder / "es.json"} << R"({"Time is up": 1})";
        std::ofstream{folder / "ja.json"} << "[]";
        struct Row {
            QStringList languages;
            const char* text;
        };
        for (const auto& row : std::vector<Row>{
                 {{"it-IT", "de-Latn-AT", "fr"}, "Die Zeit ist um"},
                 {{"fr", "de"}, "Temps écoulé"},
                 {{"en-GB", "de"}, "Time is up"},
                 {{"C"}, "Time is up"},
             }) {
            char name[] = "test";
            char* arguments[] = {name, nullptr};
            int count = 1;
            QCoreApplication application{count, arguments};
            const auto path = QString::fromStdString(folder.path().string());
            EXPECT_TRUE(installTranslation(application, row.languages, path));
            EXPECT_EQ(localized("Time is up"), row.text);
            EXPECT_EQ(localized("App quit"), "App quit");
            for (const char* broken : {"es", "ja"}) {
                const auto failed = installTranslation(application, {broken}, path);
                ASSERT_FALSE(failed) << broken;
                EXPECT_THAT(failed.error(), testing::HasSubstr(std::string{broken} + ".json: expected"));
            }
        }
    }

} // namespace

} // namespace vespra
