#include "App/System/linux/AutostartEntry.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <QProcess>
#include <sstream>

namespace vespra {

namespace {

    class AutostartEntryTest : public testing::Test {
    protected:
        AutostartEntry entry(const QString& program = QStringLiteral("/opt/Vespra/bin/vespra"))
        {
            return {{.file = QString::fromStdString(own.string()),
                        .systemFiles = {QString::fromStdString(system.string())}},
                QStringLiteral("Vespra"),
                program};
        }
        bool isEnabled() { return entry().status() == LoginServiceStatus::enabled; }
        static void write(const std::filesystem::path& file, const std::string& lines)
        {
            std::filesystem::create_directories(file.parent_path());
            std::ofstream{file} << "[Desktop Entry]\n" << lines;
        }

        TemporaryDirectory folder;
        const std::filesystem::path own = folder / "home/autostart/vespra.desktop";
        const std::filesystem::path system = folder / "xdg/autostart/vespra.desktop";
    };

} // namespace

TEST_F(AutostartEntryTest, GoesByTheUsersFileBeforeTheSystems)
{
    struct Row {
        const char* own;
        const char* system;
        bool isEnabled;
    };
    for (const auto& [ownLines, systemLines, expected] : std::initializer_list<Row>{
             {nullptr, nullptr, false},
             {nullptr, "Exec=vespra\n", true},
             {nullptr, "Exec=vespra\nHidden=true\n", false},
             {"Exec=vespra\n", nullptr, true},
             {"Exec=vespra\nX-GNOME-Autostart-enabled=false\n", nullptr, false},
             {"Exec=vespra\nX-GNOME-Autostart-enabled=true\nHidden=false\n", nullptr, true},
             {"Hidden=true\n", "Exec=vespra\n", false},
             {"Exec=vespra\n", "Hidden=true\n", true},
         }) {
        std::filesystem::remove_all(folder.path());
        if (ownLines)
            write(own, ownLines);
        if (systemLines)
            write(system, systemLines);
        SCOPED_TRACE(std::string{ownLines ? ownLines : "none"} + " / " + (systemLines ? systemLines : "none"));
        EXPECT_EQ(isEnabled(), expected);
        // From wherever it stands, both ways.
        ASSERT_TRUE(entry().registerApplication());
        EXPECT_TRUE(isEnabled());
        ASSERT_TRUE(entry().unregisterApplication());
        EXPECT_FALSE(isEnabled());
        EXPECT_EQ(std::filesystem::exists(own), systemLines != nullptr) << "only a file of the system's needs one";
        ASSERT_TRUE(entry().unregisterApplication());
    }
}

TEST_F(AutostartEntryTest, StartsAProgramOfAnyName)
{
    const std::string program = folder / R"(od"d $HO`M\E 100 u.sh)";
    std::ofstream{program} << "#!/bin/sh\necho started > \"$(dirname \"$0\")/log\"\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    ASSERT_TRUE(entry(QString::fromStdString(program)).registerApplication());
    std::stringstream text;
    text << std::ifstream{own}.rdbuf();
    EXPECT_THAT(text.str(), testing::HasSubstr(R"(/od\\"d \\$HO\\`M\\\\E 100 u.sh")"));
    // As a desktop does it.
    const auto launch = QStringLiteral(
        "import sys; from gi.repository import Gio; Gio.DesktopAppInfo.new_from_filename(sys.argv[1]).launch()");
    ASSERT_EQ(QProcess::execute(QStringLiteral("/usr/bin/python3"), {"-c", launch, QString::fromStdString(own)}), 0);
    while (!std::filesystem::exists(folder / "log"))
        usleep(10'000);
}

} // namespace vespra
