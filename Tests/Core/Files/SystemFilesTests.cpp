#include "Core/Files/FileSystem.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

using namespace vespra;
namespace fs = std::filesystem;

namespace {

TEST(SystemFiles, ReportsWhatTheSystemRefuses)
{
    const TemporaryDirectory directory;
    const auto none = directory / "none", taken = directory / "taken";
    putText(taken, "");
    auto& files = systemFiles();
    EXPECT_FALSE(files.read(directory.path()));
    EXPECT_FALSE(files.createDirectory(taken));
    EXPECT_FALSE(files.createFile(taken));
    for (const auto& path : {none, fs::path{"/dev/full"}})
        EXPECT_FALSE(files.write(path, "x"));
    EXPECT_FALSE(files.setAttributes(none, {}));
    EXPECT_FALSE(files.sync(none));
    EXPECT_FALSE(files.rename(none, taken));
    EXPECT_FALSE(files.remove(none));
}

} // namespace
