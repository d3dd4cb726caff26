#include "App/Model/PreferencesStore.h"

#include "App/Model/linux/SettingsFileDefaults.h"
#include "Tests/Support/RecordedLog.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <fstream>
#include <limits>

namespace vespra {

namespace {

    namespace store = PreferencesStore;
    namespace fs = std::filesystem;

    std::string contents(const fs::path& path)
    {
        std::ifstream file{path};
        return std::string{std::istreambuf_iterator{file}, {}};
    }

    class Preferences : public testing::Test {
    protected:
        SettingsFileDefaults defaults() const { return SettingsFileDefaults{QString::fromStdString(path_.string())}; }
        /// What another program, or another version, has left under `key`.
        void leave(const char* key, const QVariant& value) const
        {
            QSettings{QString::fromStdString(path_.string()), QSettings::IniFormat}.setValue(QLatin1String{key}, value);
        }
        static void expectDefaults(const UserDefaults* defaults)
        {
            EXPECT_EQ(store::load(defaults), SessionPreferences{});
            EXPECT_EQ(store::loadSettings(defaults), SessionSettings{});
            EXPECT_TRUE(store::playsHeatAlarm(defaults));
            EXPECT_FALSE(store::showsRemainingTimeInMenuBar(defaults));
            EXPECT_FALSE(store::didFinishOnboarding(defaults));
        }

        TemporaryDirectory folder_;
        fs::path path_ = folder_ / "Vespra/Vespra.ini";
        RecordedLog log_;
        const SessionPreferences chosen_{.mode = SessionMode::until, .timerDuration = 5400s, .untilTime = {6, 45}};
    };

    TEST_F(Preferences, ThatCannotBeReadAreTheDefaultsUntilTheNextSave)
    {
        const QByteArray wrongMode = R"({"mode":"forever","timerDuration":60,"untilTime":{"hour":1,"minute":1},)"
                                     R"("options":{"keepsDisplayAwake":true,"closedLid":true}})";
        for (const QVariant& foreign : std::vector<QVariant>{QByteArray{"{"},
                 QByteArray{"[]"},
                 QByteArray{"\0\xff", 2},
                 wrongMode,
                 QStringLiteral("{}"),
                 42,
                 QStringLiteral("false"),
                 QStringLiteral("true"),
                 QStringLiteral("1"),
                 0,
                 QByteArray{"bool:false"}}) {
            SCOPED_TRACE(foreign.toString().toStdString());
            leave("sessionPreferences", foreign);
            leave("sessionSettings", foreign == wrongMode ? QByteArray{R"({"agentSafetyCap":"long"})"} : foreign);
            for (const char* key : {"playsHeatAlarm", "showsRemainingTimeInMenuBar", "didFinishOnboarding"})
                leave(key, foreign);
            auto file = defaults();
            expectDefaults(&file);
            store::save(chosen_, &file);
            EXPECT_EQ(store::load(&file), chosen_);
        }
    }

    TEST_F(Preferences, OfAFileThatIsNoSettingsFileAreTheDefaults)
    {
        fs::create_directory(path_.parent_path());
        std::ofstream{path_} << "\x7f\nnonsense\n[unclosed\n=\n";
        auto file = defaults();
        expectDefaults(&file);
        expectDefaults(nullptr);
        store::save(chosen_, &file);
        EXPECT_THAT(contents(path_), testing::HasSubstr("sessionPreferences="));
        EXPECT_THAT(log_.messages, testing::IsEmpty());
    }

    TEST_F(Preferences, WithoutAJSONFormAreNotWritten)
    {
        auto file = defaults();
        store::save(chosen_, &file);
        store::save({.timerDuration = Seconds{std::numeric_limits<double>::infinity()}}, &file);
        EXPECT_EQ(store::load(&file), chosen_);
    }

    TEST(UserDefaultsFile, StandsInTheConfigurationFolder)
    {
        const TemporaryDirectory config;
        qputenv("XDG_CONFIG_HOME", config.path().c_str());
        makeUserDefaults()->setBoolean("playsHeatAlarm", false);
        qunsetenv("XDG_CONFIG_HOME");
        EXPECT_THAT(contents(config / "Vespra/Vespra.ini"), testing::HasSubstr("playsHeatAlarm=bool:false\n"));
    }

} // namespace

} // namespace vespra
