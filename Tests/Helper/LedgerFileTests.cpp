#include "Helper/LedgerFile.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vespra {

namespace {

    const SleepOverrideRecord sample{.originalSleepDisabled = true, .appliedAt = Instant::fromReferenceDate(7.5s)};

    using Reading = std::expected<std::optional<SleepOverrideRecord>, std::string>;
    const Reading nothing{};

    struct LedgerFileTest : testing::Test {
        TemporaryDirectory directory;
        std::filesystem::path state = directory / "state";
        std::filesystem::path path = state / "sleep-override.json";
        LedgerFile ledger{state};
    };

    TEST_F(LedgerFileTest, GivesBackWhatWasWrittenUntilItIsErased)
    {
        EXPECT_EQ(ledger.read(), nothing);
        ASSERT_TRUE(ledger.write({}));
        ASSERT_TRUE(ledger.write(sample));
        EXPECT_EQ(LedgerFile{state}.read(), Reading{sample});
        ASSERT_TRUE(ledger.erase());
        ASSERT_TRUE(ledger.erase());
        EXPECT_EQ(ledger.read(), nothing);
        EXPECT_TRUE(std::filesystem::is_empty(state));
    }

    TEST_F(LedgerFileTest, IsForItsOwnerAlone)
    {
        ASSERT_TRUE(ledger.write(sample));
        struct stat file, folder;
        ASSERT_EQ(stat(path.c_str(), &file) + stat(state.c_str(), &folder), 0);
        EXPECT_EQ(file.st_mode & 0777, 0600u);
        EXPECT_EQ(folder.st_mode & 0777, 0700u);
    }

    TEST_F(LedgerFileTest, KeepsAsideWhatItCannotRead)
    {
        const char* const wrongType = R"({"originalSleepDisabled":1,"appliedAt":0})";
        for (const std::string text : {"", "{", "null", "[]", wrongType, R"({"originalSleepDisabled":true})"}) {
            SCOPED_TRACE(text);
            putText(path, text);
            EXPECT_FALSE(ledger.read());
            ASSERT_TRUE(ledger.setAside());
            EXPECT_EQ(ledger.read(), nothing);
            EXPECT_EQ(textOf(path.string() + ".bad"), text);
        }
        putText(path, std::string(100'000, ' ') + "{}");
        EXPECT_FALSE(ledger.read());
    }

    TEST_F(LedgerFileTest, FollowsNoLinkAndReportsAPlaceItCannotUse)
    {
        putText(directory / "elsewhere", R"({"originalSleepDisabled":true,"appliedAt":0})");
        std::filesystem::create_directories(state);
        std::filesystem::create_symlink(directory / "elsewhere", path);
        EXPECT_FALSE(ledger.read());
        std::filesystem::create_directories(state / "sleep-override.json.new");
        const auto written = ledger.write(sample);
        ASSERT_FALSE(written);
        EXPECT_NE(written.error().find(path.string() + ".new"), std::string::npos) << written.error();
    }

} // namespace

} // namespace vespra
