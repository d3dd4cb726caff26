#include "App/DesignSystem/Buttons.h"
#include "App/Settings/SettingsWindowController.h"
#include "App/Settings/ShortcutRecorder.h"
#include "App/System/ClosedLidController.h"
#include "Tests/Support/ShownSurfaces.h"

#include <gmock/gmock.h>

#include <QDialog>
#include <QPlainTextEdit>

namespace vespra {

namespace {

    class SettingsWindowTest : public ShownSurfaces {
    protected:
        void open(SettingsTab tab)
        {
            controller.show(tab);
            settle();
        }
        /// The switch of this name.
        Switch* toggle(const char* name)
        {
            for (auto* each : controller.window()->findChildren<Switch*>())
                if (each->accessibleName() == QString::fromUtf8(name))
                    return each;
            throw std::runtime_error{std::string{"no switch "} + name};
        }
        /// What can be seen, in the order of its places.
        std::vector<std::string> texts()
        {
            std::vector<std::string> all;
            for (const auto* each : controller.window()->findChildren<QLabel*>())
                if (each->isVisible())
                    all.push_back(each->accessibleName().toStdString());
            return all;
        }
        void type(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers, QEvent::Type type = QEvent::KeyPress)
        {
            QKeyEvent event{type, key, modifiers};
            QApplication::sendEvent(&widget, &event);
            settle();
        }

        SettingsWindowController controller{context(), theme};
    };

} // namespace

TEST_F(SettingsWindowTest, EveryControlHasANameForThoseWhoDoNotSeeIt)
{
    for (const auto& [tab, name] : rawValues<SettingsTab>) {
        open(tab);
        int count = 0;
        for (const auto* each : controller.window()->findChildren<QWidget*>()) {
            if (!each->isVisible() || !(each->focusPolicy() & Qt::TabFocus))
                continue;
            EXPECT_FALSE(each->accessibleName().isEmpty()) << name << ": " << each->metaObject()->className();
            ++count;
        }
        EXPECT_GE(count, 2) << name << ": the tabs and something to do";
    }
}

TEST_F(SettingsWindowTest, ControlsWriteAtOnceAndFollowChangesMadeElsewhere)
{
    open(SettingsTab::power);
    EXPECT_EQ(texts(),
        (std::vector<std::string>{"Charger",
            "Require the charger",
            "Unplugging the charger ends the session. Plugging it back in doesn't restart it.",
            "Battery",
            "Stop on low battery",
            "Protects your battery when the computer isn't plugged in. The session ends and the computer can sleep.",
            "Threshold",
            "20 %",
            "Limit time on battery"}));
    const int height = controller.window()->height();
    toggle("Limit time on battery")->click();
    settle();
    EXPECT_EQ(coordinator().settings().energy.batteryTimeLimit, Seconds{1h});
    EXPECT_EQ(texts().back(), "1 hour") << "as it is read aloud";
    EXPECT_GT(controller.window()->height(), height) << "the window grows with its page";
    setSettings([](SessionSettings& settings) {
        settings.energy.requiresACPower = false;
        settings.energy.batteryTimeLimit = {};
    });
    settle();
    EXPECT_FALSE(toggle("Require the charger")->isChecked());
    EXPECT_EQ(texts().back(), "Limit time on battery");
}

TEST_F(SettingsWindowTest, KeepsTheFocusWhileConditionsChange)
{
    open(SettingsTab::closedLid);
    auto* const control = toggle("Keep going on battery");
    control->setFocus();
    laptop.set({{"charger", "off"}, {"helper", "ready"}});
    model().closedLid()->refreshStatus();
    settle();
    EXPECT_THAT(texts(), testing::Contains("Installed"));
    EXPECT_EQ(controller.window()->focusWidget(), control) << "the same page";
}

TEST_F(SettingsWindowTest, ShowsThePageThatWasAskedForAndIsGoneWhenClosed)
{
    open(SettingsTab::about);
    EXPECT_EQ(controller.window()->windowTitle(), "About");
    controller.show({});
    settle();
    EXPECT_EQ(controller.window()->windowTitle(), "About");
    controller.window()->close();
    controller.show(SettingsTab::power);
    settle();
    ASSERT_TRUE(controller.window()) << "opened again before it was gone";
    EXPECT_EQ(controller.window()->windowTitle(), "Power");
    controller.window()->close();
    settle();
    EXPECT_FALSE(controller.window());
}

TEST_F(SettingsWindowTest, ConnectsAnAgentOnceTheUserHasSeenTheLines)
{
    std::filesystem::create_directories(home / ".codex");
    open(SettingsTab::agent);
    const auto openSheet = [&](int index) {
        std::vector<QAbstractButton*> connects;
        for (auto* each : controller.window()->findChildren<QAbstractButton*>())
            if (each->isVisible() && each->text() == "Connect")
                connects.push_back(each);
        connects.at(static_cast<std::size_t>(index))->click();
        settle();
        return controller.window()->findChild<QDialog*>();
    };
    auto* sheet = openSheet(1);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->windowTitle(), "Connect Codex");
    EXPECT_TRUE(sheet->findChild<QPlainTextEdit*>()->toPlainText().contains("SessionStart"));
    press(sheet, "Connect");
    EXPECT_EQ(model().agentIntegration().connections().at(AgentKind::codex), HookSettingsFile::Connection::connected);
    press(controller.window(), "Disconnect");
    EXPECT_EQ(
        model().agentIntegration().connections().at(AgentKind::codex), HookSettingsFile::Connection::notConnected);

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    press(openSheet(0), "Connect");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const auto* alert = controller.window()->findChild<QDialog*>();
    ASSERT_TRUE(alert) << "Claude Code is not installed";
    EXPECT_EQ(alert->windowTitle(), "Couldn't change the agent's settings");
}

TEST_F(SettingsWindowTest, RecordsTheNextKeysThatCanBeGlobal)
{
    open(SettingsTab::general);
    const auto widgets = controller.window()->findChildren<QWidget*>();
    auto& recorder = *dynamic_cast<ShortcutRecorder*>(
        *std::ranges::find_if(widgets, [](QWidget* each) { return dynamic_cast<ShortcutRecorder*>(each) != nullptr; }));
    const auto& keys = model().sessionShortcut().keys();
    press(&recorder, "Record");
    type(recorder, Qt::Key_K, Qt::NoModifier);
    EXPECT_THAT(recorder.problem(), testing::StartsWith("Press a letter or a digit together with"));
    type(recorder, Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(recorder.problem(), "");
    type(recorder, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_EQ(keys, defaultToggleSessionKeys);
    EXPECT_TRUE(controller.window()->isVisible()) << "Escape was for the recorder";
    press(&recorder, "Record");
    type(recorder, Qt::Key_K, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(keys, (KeyCombination{.alt = true, .shift = true, .key = 'k'}));
    EXPECT_FALSE(button(&recorder, "Clear")) << "held down, they would count as pressed";
    type(recorder, Qt::Key_K, Qt::AltModifier | Qt::ShiftModifier, QEvent::KeyRelease);
    press(&recorder, "Clear");
    EXPECT_EQ(keys, std::nullopt);
    EXPECT_FALSE(button(&recorder, "Clear"));
}

} // namespace vespra
