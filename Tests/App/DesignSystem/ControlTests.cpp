#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Card.h"
#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/Note.h"
#include "App/DesignSystem/Ring.h"
#include "App/DesignSystem/Stepper.h"
#include "App/DesignSystem/TextBlock.h"
#include "Core/Scheduling/ManualMainLoop.h"

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

namespace vespra {

namespace {

    class Controls : public testing::Test {
    protected:
        /// Pixels of the usual text.
        static QFont textFont(int pixels)
        {
            QFont font;
            font.setPixelSize(pixels);
            return font;
        }
        void show(int width = 312)
        {
            window.resize(width, window.layout()->totalHeightForWidth(width));
            window.show();
            window.activateWindow();
            QApplication::processEvents();
        }
        template <class Widget> Widget& add(Widget* widget) { return added(column, widget); }
        static void key(QEvent::Type type, int key)
        {
            QKeyEvent event{type, key, Qt::NoModifier};
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        }
        static void press(int which)
        {
            key(QEvent::KeyPress, which);
            key(QEvent::KeyRelease, which);
        }
        static void wait(int milliseconds)
        {
            for (QElapsedTimer timer{(timer.start(), timer)}; timer.elapsed() < milliseconds;)
                QApplication::processEvents(QEventLoop::AllEvents, 10);
        }

        struct Display {
            Display() { qputenv("QT_QPA_PLATFORM", "offscreen"); }
        } display;
        int argumentCount = 1;
        char program[6] = "tests";
        char* arguments[2] = {program, nullptr};
        QApplication application{argumentCount, arguments};
        ManualMainLoop mainLoop;
        Look look{{}, textFont(13)};
        Theme theme{mainLoop, look};
        QWidget window;
        QVBoxLayout column{&window};
    };

    const std::string longText = "Bleibt auch bei geschlossenem Deckel wach, bis die Arbeit getan ist";

    TEST_F(Controls, NoTextIsCutHoweverLongOrLarge)
    {
        auto& card = add(new Card{theme});
        auto* button = new Button{theme, ButtonKind::plain, ButtonSize::small};
        button->show("Systemeinstellungen");
        card.add(new Row{theme, longText, button}).showSubtitle(longText);
        add(new Note{theme, NoteKind::warn, new Switch{theme}}).show("moon", longText, longText);
        for (const int pixels : {13, 20}) {
            look.setFont(textFont(pixels));
            mainLoop.run();
            show();
            for (const auto* label : window.findChildren<Label*>())
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << pixels << " px";
            EXPECT_GE(button->height(), 26 * pixels / 13 - 1);
        }
    }

    TEST_F(Controls, NothingMovesWhileDigitsChange)
    {
        for (const auto style : {TextStyle::caption, TextStyle::strong, TextStyle::longClock})
            EXPECT_DOUBLE_EQ(TextBlock(QStringLiteral("1:11:11"), look, style).size().width(),
                TextBlock(QStringLiteral("8:08:08"), look, style).size().width());
    }

    TEST_F(Controls, SizesFollowTheUsersText)
    {
        struct {
            double points;
            double scale;
        } rows[]{{7, 1}, {9.75, 1}, {10, 1}, {11, 1.125}, {14.625, 1.5}, {30, 1.5}};
        for (const auto& [points, scale] : rows) {
            auto font = textFont(13);
            font.setPointSizeF(points);
            look.setFont(font);
            EXPECT_DOUBLE_EQ(look.scale(), scale) << points << " points";
            EXPECT_NEAR(
                QFontMetricsF{look.font(TextStyle::clock)}.fontDpi() / 72 * look.font(TextStyle::clock).pointSizeF(),
                32 * scale,
                0.01);
        }
    }

    TEST_F(Controls, StepperRepeatsWhileAKeyIsHeldAndStopsAtTheEnd)
    {
        auto& stepper = add(new Stepper{theme});
        int value = 5;
        const auto tell
            = [&] { stepper.show({.name = "n", .value = std::to_string(value), .canIncrement = value < 8}); };
        stepper.onIncrement = [&] {
            ++value;
            tell();
        };
        tell();
        show();
        auto* increment = stepper.findChildren<IconButton*>().at(1);
        increment->setFocus();
        key(QEvent::KeyPress, Qt::Key_Space);
        wait(1200);
        EXPECT_EQ(value, 8);
        EXPECT_EQ(QApplication::focusWidget(), stepper.findChildren<IconButton*>().at(0));
    }

    TEST_F(Controls, ArrowsChooseASegmentAndReturnPressesAButton)
    {
        auto& segments = add(new SegmentedControl{theme, {"Timer", "Until", "Agent"}});
        auto& button = add(new Button{theme, ButtonKind::primary});
        std::vector<std::size_t> chosen;
        segments.onChoose = [&](std::size_t index) { chosen.push_back(index); };
        segments.show(0);
        show();
        segments.findChildren<Segment*>().at(0)->setFocus();
        press(Qt::Key_Right);
        press(Qt::Key_Right);
        press(Qt::Key_Left);
        EXPECT_EQ(chosen, (std::vector<std::size_t>{1, 2, 1}));
        int presses = 0;
        QObject::connect(&button, &QPushButton::clicked, [&] { ++presses; });
        button.setFocus();
        press(Qt::Key_Return);
        press(Qt::Key_Space);
        EXPECT_EQ(presses, 2);
    }

    TEST_F(Controls, ScreenReadersAreToldWhatEverythingIs)
    {
        auto& card = add(new Card{theme});
        auto* lid = new Switch{theme};
        card.add(new Row{theme, "Closed-lid mode", lid}).showSubtitle("You can close the lid");
        lid->show(true);
        auto& stepper = add(new Stepper{theme});
        stepper.show({.name = "Duration", .value = "2h", .spokenValue = "2 hours"});
        auto& segments = add(new SegmentedControl{theme, {"Timer"}});
        segments.setAccessibleName(QStringLiteral("Mode"));
        auto& ring = add(new Ring{theme});
        ring.show({.clock = "1:00", .subtitle = "", .spoken = "1 minute left", .remaining = 1});
        struct {
            QWidget* widget;
            QAccessible::Role role;
            const char *name, *value;
        } rows[]{{lid, QAccessible::CheckBox, "Closed-lid mode", ""},
            {&stepper, QAccessible::SpinBox, "Duration", "2 hours"},
            {&segments, QAccessible::Grouping, "Mode", ""},
            {segments.findChild<Segment*>(), QAccessible::RadioButton, "Timer", ""},
            {&ring, QAccessible::StaticText, "1 minute left", ""}};
        for (const auto& row : rows) {
            const auto* told = QAccessible::queryAccessibleInterface(row.widget);
            EXPECT_EQ(told->role(), row.role) << row.name;
            EXPECT_EQ(told->text(QAccessible::Name), QLatin1String{row.name});
            EXPECT_EQ(told->text(QAccessible::Value), QLatin1String{row.value}) << row.name;
        }
        const auto state = QAccessible::queryAccessibleInterface(lid)->state();
        EXPECT_TRUE(state.checkable && state.checked);
        std::string steps;
        stepper.onIncrement = [&] { steps += "+"; };
        stepper.onDecrement = [&] { steps += "-"; };
        auto* actions = QAccessible::queryAccessibleInterface(&stepper)->actionInterface();
        actions->doAction(QAccessibleActionInterface::increaseAction());
        actions->doAction(QAccessibleActionInterface::decreaseAction());
        EXPECT_EQ(steps, "+-");
    }

    TEST_F(Controls, TheFocusRingComesWithTheKeyboardAndGoesWithTheControl)
    {
        auto& area = add(new QScrollArea);
        auto* inside = new QWidget;
        inside->setFixedSize(200, 900);
        auto* button = new Button{theme, ButtonKind::plain};
        button->setParent(inside);
        button->setGeometry(20, 60, 100, 32);
        area.setWidget(inside);
        area.setFixedHeight(200);
        FocusRing ring{theme, window};
        show();
        button->setFocus();
        EXPECT_FALSE(ring.isVisible());
        press(Qt::Key_Tab);
        button->setFocus();
        ASSERT_TRUE(ring.isVisible());
        const auto around
            = [&] { return QRect{button->mapTo(&window, QPoint{}), button->size()}.adjusted(-4, -4, 4, 4); };
        EXPECT_EQ(ring.geometry(), around());
        const auto before = ring.geometry();
        area.verticalScrollBar()->setValue(30);
        EXPECT_EQ(ring.geometry(), around());
        EXPECT_NE(ring.geometry(), before);
        area.verticalScrollBar()->setValue(400);
        EXPECT_FALSE(ring.isVisible());
    }

} // namespace

} // namespace vespra
