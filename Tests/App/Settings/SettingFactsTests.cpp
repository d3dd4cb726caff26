#include "App/Model/ComponentFacts.h"
#include "App/Model/ModelSettings.h"
#include "App/Settings/SettingFacts.h"
#include "App/Settings/ShortcutKeys.h"
#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    class SettingFactsTest : public LaunchedApplication {
    protected:
        void SetUp() override { launch(); }

        void set(std::string_view key, const char* text)
        {
            const auto change = settingTexts::change(key, text);
            ASSERT_TRUE(change) << change.error();
            changeSetting(model(), *change);
        }
        std::string value(std::string_view key) { return settingTexts::text(*findSetting(key), settingsOf(model())); }
        /// The rows of this kind with this setting, on all pages.
        template <class Row> Row row(std::string_view key)
        {
            for (const auto& [tab, name] : rawValues<SettingsTab>)
                for (const auto& section : settingsPage(tab, true))
                    for (const auto& each : section.rows)
                        if (const auto* const found = std::get_if<Row>(&each); found && found->setting->key == key)
                            return *found;
            throw std::runtime_error{"no row for " + std::string{key}};
        }
    };

} // namespace

TEST(UpdateFacts, SayHowItStandsAndWhatFollows)
{
    struct Row {
        UpdateState state;
        const char *text, *button;
        void (AppUpdates::*press)();
    };
    for (const auto& [state, text, button, press] : std::vector<Row>{
             {update::Idle{}, "", "Check for Updates…", &AppUpdates::checkForUpdates},
             {update::Checking{}, "Looking for a new version…", "Cancel", &AppUpdates::cancel},
             {update::UpToDate{}, "Vespra is up to date.", "Check for Updates…", &AppUpdates::checkForUpdates},
             {update::Available{"2.0", "New"},
                 "Vespra 2.0 is available\nNew",
                 "Download and Install",
                 &AppUpdates::install},
             {update::Available{"2.0", "", true}, "Vespra 2.0 is available", "Install", &AppUpdates::install},
             {update::Downloading{"2.0", 0.255}, "Downloading Vespra 2.0: 25 %", "Cancel", &AppUpdates::cancel},
             {update::Failed{UpdateFailure::untrusted},
                 "The update isn't what its makers signed. Nothing was changed.",
                 "Check for Updates…",
                 &AppUpdates::checkForUpdates},
         }) {
        const auto facts = settingFacts::updateFacts(state);
        EXPECT_EQ(facts.text, text);
        EXPECT_EQ(facts.button, button);
        EXPECT_EQ(facts.press, press);
    }
}

TEST_F(SettingFactsTest, SteppersGoToTheirLimitsAndNoFurther)
{
    constexpr auto limit = "energy.batteryTimeLimit", cap = "agentSafetyCap", delay = "agents.graceDelay",
                   threshold = "energy.lowBatteryThreshold";
    struct Row {
        const char* key;
        const char* from;
        int presses; // below zero: of minus
        const char* to;
        bool canGoOn;
    };
    for (const auto& [key, from, presses, to, canGoOn] : std::vector<Row>{
             {limit, "1h", 27, "7h45m", true},
             {limit, "1h", 28, "8h", false},
             {limit, "1h", 29, "8h", false},
             {limit, "15m", -1, "15m", false},
             {cap, "2h", -1, "1h", true},
             {cap, "1h", -1, "off", false},
             {cap, "off", -1, "off", false},
             {cap, "off", 1, "1h", true},
             {cap, "24h", 1, "24h", false},
             {delay, "30s", -1, "0s", false},
             {delay, "15m", 1, "15m", false},
             {threshold, "80", 1, "80", false},
             {threshold, "20", -1, "15", true},
             {threshold, "10", -1, "10", false},
         }) {
        SCOPED_TRACE(testing::Message() << key << " from " << from << ", " << presses << " presses");
        set(key, from);
        const auto stepper = row<StepperRow>(key);
        for (int press = 0; press < std::abs(presses); ++press)
            settingFacts::step(stepper, model(), presses > 0);
        EXPECT_EQ(value(key), to);
        const auto facts = settingFacts::stepperFacts(stepper, model());
        EXPECT_EQ(presses > 0 ? facts.canIncrement : facts.canDecrement, canGoOn);
    }
}

TEST_F(SettingFactsTest, ValuesReadAsPeopleSayThem)
{
    struct Row {
        const char *key, *kept, *shown, *spoken;
    };
    for (const auto& [key, kept, shown, spoken] : std::vector<Row>{
             {"energy.lowBatteryThreshold", "20", "20 %", "20 %"},
             {"energy.batteryTimeLimit", "75m", "1h 15m", "1 hour, 15 minutes"},
             {"agentSafetyCap", "off", "No limit", "No limit"},
             {"agents.graceDelay", "90s", "1:30", "1 minute"},
         }) {
        set(key, kept);
        const auto facts = settingFacts::stepperFacts(row<StepperRow>(key), model());
        EXPECT_EQ(facts.value, shown);
        EXPECT_EQ(facts.spokenValue, spoken);
    }
}

TEST_F(SettingFactsTest, DependentRowsComeWithTheirSwitch)
{
    const auto atMost = row<StepperRow>("energy.batteryTimeLimit"),
               least = row<StepperRow>("energy.lowBatteryThreshold");
    const auto limit = row<SwitchRow>("energy.batteryTimeLimit"), low = row<SwitchRow>("energy.stopsOnLowBattery");
    EXPECT_FALSE(settingFacts::isShown(atMost, model()));
    settingFacts::setOn(limit, model(), true);
    EXPECT_TRUE(settingFacts::isShown(atMost, model()));
    EXPECT_EQ(value("energy.batteryTimeLimit"), "1h");
    settingFacts::setOn(limit, model(), false);
    EXPECT_EQ(value("energy.batteryTimeLimit"), "off");
    EXPECT_TRUE(settingFacts::isShown(least, model()));
    settingFacts::setOn(low, model(), false);
    EXPECT_FALSE(settingFacts::isShown(least, model()));
}

TEST_F(SettingFactsTest, WarnsOfAShutDownOnlyWhileItCannotBeDone)
{
    const auto& action = *row<ChoiceRow>("agents.endAction").setting;
    const auto isWarned = [&] { return settingFacts::isShown(SpecialRow::shutDownWarning, model()); };
    EXPECT_EQ(settingFacts::choices(action), (std::vector<std::string>{"Nothing", "Sleep", "Shut Down"}));
    settingFacts::choose(action, model(), 1);
    EXPECT_FALSE(isWarned());
    settingFacts::choose(action, model(), 2);
    EXPECT_EQ(value("agents.endAction"), "shutDown");
    EXPECT_TRUE(isWarned());
    laptop.set({{"helper", "ready"}});
    model().closedLid()->refreshStatus();
    laptop.settle();
    EXPECT_FALSE(isWarned());
}

TEST_F(SettingFactsTest, ARunningSessionFollowsAtOnce)
{
    set("energy.requiresACPower", "off");
    laptop.set({{"charger", "off"}});
    model().start();
    settingFacts::setOn(row<SwitchRow>("preferences.options.keepsDisplayAwake"), model(), true);
    EXPECT_TRUE(model().keepsDisplayAwake());
    EXPECT_TRUE(isActive());
    settingFacts::setOn(row<SwitchRow>("energy.requiresACPower"), model(), true);
    EXPECT_EQ(lastEnd(), "chargerDisconnected");
}

TEST(ComponentFacts, SayHowItIsAndWhatCanBeDone)
{
    using panelFacts::ComponentAction;
    struct Row {
        HelperStatus component;
        bool isApplied, isRegistering;
        const char* text;
        std::optional<ComponentAction> action;
    };
    for (const auto& row : std::vector<Row>{
             {helper::Unsupported{ClosedLidUnsupportedReason::unsignedBuild},
                 false,
                 false,
                 "Unavailable in this build",
                 {}},
             {helper::NotInstalled{}, false, false, "Not installed", ComponentAction::setUp},
             {helper::NotInstalled{}, false, true, "Checking…", {}},
             {helper::AwaitingApproval{}, false, false, "Waiting for your approval", ComponentAction::approve},
             {helper::Failed{}, false, false, "Not responding", ComponentAction::retry},
             {helper::Ready{}, false, false, "Installed", {}},
             {helper::Ready{}, true, false, "In use", {}},
         }) {
        const auto status = componentFacts::status(row.component, row.isApplied, row.isRegistering);
        EXPECT_EQ(status.text, row.text);
        EXPECT_EQ(status.action, row.action) << row.text;
    }
}

TEST(ShortcutKeys, AreReadAndWrittenAsOnTheKeyboard)
{
    const bool isMac = keySeparator().empty();
    EXPECT_EQ(keysText(defaultToggleSessionKeys), isMac ? "⌃⌥⌘W" : "Ctrl+Alt+Super+W");
    const auto pressed = [](int key, Qt::KeyboardModifiers modifiers) {
        return pressedKeys(QKeyEvent{QEvent::KeyPress, key, modifiers});
    };
    constexpr auto all = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    EXPECT_EQ(pressed(Qt::Key_W, all), defaultToggleSessionKeys);
    EXPECT_EQ(pressed(Qt::Key_9, Qt::AltModifier), (KeyCombination{.alt = true, .key = '9'}));
    EXPECT_FALSE(pressed(Qt::Key_F1, Qt::AltModifier).canBeGlobal());
}

} // namespace vespra
