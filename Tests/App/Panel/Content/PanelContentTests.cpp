#include "App/Panel/Content/PanelContent.h"

#include "App/DesignSystem/Buttons.h"
#include "App/Panel/Content/AgentList.h"
#include "App/Panel/Content/AgentRow.h"
#include "App/System/ClosedLidController.h"
#include "Tests/Support/LaunchedApplication.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>

namespace vespra {

namespace {

    const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");

    class Panel : public LaunchedApplicationOf<QApplication> {
    protected:
        Panel()
        {
            launch();
            setSettings([](auto& settings) { settings.energy.requiresACPower = false; });
            setHelper("ready");
        }
        void setHelper(const char* mode)
        {
            laptop.set({{"helper", mode}});
            model().closedLid()->refreshStatus();
            laptop.settle();
        }
        PanelContent& show(int maximumHeight = QWIDGETSIZE_MAX)
        {
            content.emplace(SurfaceContext{.model = model(),
                                .mainLoop = laptop.mainLoop,
                                .tasks = *laptop.platform.time.tasks,
                                .clock = model().clock(),
                                .appearance = *laptop.platform.appearance},
                Theme{laptop.mainLoop, look});
            content->setMaximumHeight(maximumHeight);
            content->show();
            settle();
            return *content;
        }
        /// Lays out what has changed.
        void settle()
        {
            laptop.settle();
            QApplication::processEvents();
            content->resize(content->sizeHint());
            QApplication::processEvents();
        }
        void press(int key, bool isAutoRepeat = false)
        {
            auto* focused = content->focusWidget();
            QKeyEvent event{QEvent::KeyPress, key, {}, {}, isAutoRepeat};
            QApplication::sendEvent(focused ? focused : &*content, &event);
            settle();
        }
        Button& button(const char* text)
        {
            for (auto* found : content->findChildren<QPushButton*>())
                if (auto* named = dynamic_cast<Button*>(found); named && named->accessibleName() == text)
                    return *named;
            throw std::runtime_error{text};
        }
        /// What of the kind is shown, from top to bottom, and in a line as one reads.
        template <class Widget = QWidget> std::vector<Widget*> shown()
        {
            std::vector<Widget*> found;
            for (auto* widget : content->findChildren<QWidget*>())
                if (auto* wanted = dynamic_cast<Widget*>(widget); wanted && wanted->isVisible())
                    found.push_back(wanted);
            std::ranges::sort(found, {}, [this](const QWidget* widget) {
                const auto middle = widget->mapTo(&*content, widget->rect().center());
                return std::pair{middle.y(), middle.x()};
            });
            return found;
        }
        void runAgents(int count)
        {
            connectClaude();
            prefer(SessionMode::agent);
            model().start();
            for (int number = 0; number < count; ++number)
                model().agents().record({.sessionID = std::to_string(number),
                    .cwd = "/home/me/a-folder-with-a-rather-long-name",
                    .signal = AgentSignal::working,
                    .date = laptop.time.now()});
        }

        Look look{Appearance{.reducesMotion = true}, QFont{}};
        std::optional<PanelContent> content;
    };

} // namespace

TEST_F(Panel, NamesWhatCanBeUsedInEveryState)
{
    using enum AgentSignal;
    const std::vector<std::pair<const char*, std::function<void()>>> states{
        {"idle", [] {}},
        {"until, charger required",
            [this] {
                prefer(SessionMode::until, {.closedLid = true});
                laptop.set({{"charger", "off"}});
            }},
        {"no agent connected", [this] { prefer(SessionMode::agent); }},
        {"timer", [this] { model().toggleSession(); }},
        {"running hot",
            [this] {
                model().toggleSession();
                laptop.set({{"thermal", "serious"}});
            }},
        {"closed lid being checked",
            [this] {
                laptop.set({{"thermal", "nominal"}});
                setHelper("stuck");
                model().setClosedLid(true);
                laptop.advance(1s);
            }},
        {"awaiting approval",
            [this] {
                model().toggleSession();
                setHelper("awaitingApproval");
            }},
        {"agents at work",
            [this] {
                setSettings([](auto& settings) { settings.agents.endAction = AgentEndAction::sleepNow; });
                runAgents(1);
                agent(working);
            }},
        {"agents finished",
            [this] {
                model().agents().record({.sessionID = "0", .signal = finished, .date = laptop.time.now()});
                agent(finished);
            }},
        {"countdown", [this] { laptop.advance(2min); }},
        {"ended by the battery",
            [this] {
                prefer(SessionMode::unlimited);
                model().start();
                laptop.set({{"charger", "off"}, {"battery", "5"}});
            }},
    };
    for (const auto& [name, enter] : states) {
        SCOPED_TRACE(name);
        laptop.set({{"charger", "on"}});
        enter();
        show();
        for (auto* widget : shown()) {
            if (widget->focusPolicy() == Qt::NoFocus && !dynamic_cast<QAbstractButton*>(widget))
                continue;
            const auto* interface = QAccessible::queryAccessibleInterface(widget);
            EXPECT_FALSE(interface->text(QAccessible::Name).isEmpty()) << widget->metaObject()->className();
        }
    }
}

TEST_F(Panel, StartsOnlyWhatWouldNotBeRefused)
{
    show();
    EXPECT_TRUE(button("Start").isEnabled());
    laptop.set({{"charger", "off"}, {"battery", "20"}});
    EXPECT_FALSE(button("Start").isEnabled());
    EXPECT_EQ(button("Start").accessibleDescription(), "Battery at 20%, too low to start.");
    laptop.set({{"battery", "21"}});
    EXPECT_TRUE(button("Start").isEnabled());
    prefer(SessionMode::agent);
    laptop.settle();
    EXPECT_FALSE(button("Start").isEnabled());
    connectClaude();
    laptop.settle();
    EXPECT_TRUE(button("Start").isEnabled());
}

TEST_F(Panel, ScrollsNothingButTheAgents)
{
    runAgents(12);
    show();
    const int whole = content->height();
    const auto heights = [this] {
        std::vector<int> all;
        for (const auto* widget : shown())
            if (widget->parent() == &*content && !dynamic_cast<const AgentList*>(widget))
                all.push_back(widget->height());
        return all;
    };
    const auto unlimited = heights();
    content->setMaximumHeight(whole - 200);
    settle();
    EXPECT_EQ(content->height(), whole - 200);
    EXPECT_EQ(heights(), unlimited);
    EXPECT_GE(shown<AgentList>().front()->verticalScrollBar()->maximum(), 200);
    EXPECT_TRUE(shown<AgentList>().front()->verticalScrollBar()->isVisible());
    EXPECT_LT(content->minimumSizeHint().height(), whole - 200);
    content->setMaximumHeight(content->minimumSizeHint().height());
    settle();
    EXPECT_EQ(heights(), unlimited) << "as low as it may be";
}

TEST_F(Panel, KeepsTheRowsOfAgentsAndCountsOnlyWhileItIsShown)
{
    runAgents(2);
    show();
    const auto rows = shown<AgentRow>();
    laptop.advance(24min);
    EXPECT_EQ(shown<AgentRow>(), rows);
    EXPECT_THAT(rows.front()->accessibleName().toStdString(), testing::HasSubstr("24m"));
    const auto ticking = laptop.time.pendingTasks();
    content->hide();
    settle();
    EXPECT_EQ(laptop.time.pendingTasks(), ticking - 1);
}

TEST_F(Panel, HandsTheFocusFromStartToStopAndBack)
{
    show();
    EXPECT_EQ(content->focusWidget(), &button("Start"));
    press(Qt::Key_Return);
    ASSERT_TRUE(isActive());
    EXPECT_EQ(content->focusWidget(), &button("Stop"));
    press(Qt::Key_Return, /*isAutoRepeat=*/true);
    EXPECT_TRUE(isActive()) << "held too long";
    press(Qt::Key_Return);
    EXPECT_FALSE(isActive());
    EXPECT_EQ(content->focusWidget(), &button("Start"));
}

TEST_F(Panel, OpensNoChecklistForACheckThatIsOverAtOnce)
{
    show();
    model().start();
    settle();
    const int closed = content->height();
    model().setClosedLid(true);
    laptop.advance(1s);
    settle();
    EXPECT_EQ(content->height(), closed);
    model().setClosedLid(false);
    laptop.advance(1s);
    laptop.set({{"helper", "stuck"}});
    model().setClosedLid(true);
    settle();
    EXPECT_EQ(content->height(), closed);
    laptop.advance(1s);
    settle();
    EXPECT_GT(content->height(), closed);
}

TEST_F(Panel, TabsAsItReads)
{
    const auto expectOrder = [this] {
        std::vector<QWidget*> tabbed;
        for (auto* next = content->nextInFocusChain(); next != &*content; next = next->nextInFocusChain())
            if (next->isVisible() && (next->focusPolicy() & Qt::TabFocus) != 0)
                tabbed.push_back(next);
        auto read = shown();
        std::erase_if(read, [](const QWidget* widget) { return (widget->focusPolicy() & Qt::TabFocus) == 0; });
        EXPECT_EQ(tabbed, read);
    };
    show();
    expectOrder();
    model().start();
    settle();
    expectOrder();
    const auto place = button("Stop").mapTo(&*content, QPoint{});
    model().setClosedLid(true);
    settle();
    EXPECT_EQ(button("Stop").mapTo(&*content, QPoint{}), place) << "nothing moves under the pointer";
    content->hide();
    content->show();
    settle();
    expectOrder();
}

} // namespace vespra
