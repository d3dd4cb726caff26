#include "Helper/LedgerFile.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace vespra {

namespace {

    int syncsUntilFailure = -1;

} // namespace

/// In the system's place: everything reaches the disk, but for the n-th.
bool syncToDisk(int) { return syncsUntilFailure-- != 0; }

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
        struct stat file, folder;
        ASSERT_EQ(stat(path.c_str(), &file) + stat(state.c_str(), &folder), 0);
        EXPECT_EQ(file.st_mode & 0777, 0600u);
        EXPECT_EQ(folder.st_mode & 0777, 0700u);
        EXPECT_EQ(LedgerFile{state}.read(), Reading{sample});
        ASSERT_TRUE(ledger.erase());
        ASSERT_TRUE(ledger.erase());
        EXPECT_EQ(ledger.read(), nothing);
        EXPECT_TRUE(std::filesystem::is_empty(state));
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
        const std::string sound = R"({"originalSleepDisabled":true,"appliedAt":0})";
        putText(path, std::string(100'000, ' ') + sound);
        EXPECT_FALSE(ledger.read());
        putText(directory / "elsewhere", sound);
        std::filesystem::remove(path);
        std::filesystem::create_symlink(directory / "elsewhere", path);
        EXPECT_FALSE(ledger.read()) << "follows no link";
    }

    TEST_F(LedgerFileTest, NothingThatFailsCountsAsDone)
    {
        const auto write = [&] { return ledger.write(sample); };
        const auto erase = [&] { return ledger.erase(); };
        const auto setAside = [&] { return ledger.setAside(); };
        const auto inTheWayOf = [&](const char* name) {
            return [this, name] { std::filesystem::create_directories(state / name / "x"); };
        };
        const auto syncFails = [&](int after, const char* name = nullptr) {
            return [&, after, name] {
                syncsUntilFailure = after;
                if (name)
                    putText(state / name, "{");
            };
        };
        const auto nothingFits = [&] {
            std::filesystem::create_directories(state);
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit none{0, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &none);
        };
        const char* const file = "sleep-override.json";
        using Row = std::tuple<const char*, std::function<void()>, std::function<HelperResult()>>;
        for (const auto& [what, before, change] : std::vector<Row>{
                 {"the directory", [&] { putText(state, ""); }, write},
                 {"the directory's sync", syncFails(0), write},
                 {"the temporary file", inTheWayOf("sleep-override.json.new"), write},
                 {"the record", nothingFits, write},
                 {"the record's sync", syncFails(1), write},
                 {"the renaming", inTheWayOf(file), write},
                 {"the renaming's sync", syncFails(2), write},
                 {"the deletion", inTheWayOf(file), erase},
                 {"the deletion's sync", syncFails(0, file), erase},
                 {"setting aside", [&] { putText(path, "{"), inTheWayOf("sleep-override.json.bad")(); }, setAside},
                 {"its sync", syncFails(0, file), setAside},
             }) {
            SCOPED_TRACE(what);
            before();
            const auto changed = change();
            const rlimit any{RLIM_INFINITY, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &any);
            EXPECT_FALSE(changed);
            syncsUntilFailure = -1;
            std::filesystem::remove_all(state);
        }
    }

    TEST_F(LedgerFileTest, IsForOneAtATime)
    {
        for (int turn = 0; turn < 2; ++turn) {
            LedgerFile first{state};
            EXPECT_TRUE(first.claim());
            EXPECT_FALSE(ledger.claim());
        }
        EXPECT_TRUE(ledger.claim());
    }

} // namespace

} // namespace vespra
