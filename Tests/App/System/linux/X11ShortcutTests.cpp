#include "App/System/linux/X11Shortcut.h"
#include "App/System/QtMainLoop.h"
#include "Tests/Support/QtApplication.h"

#include <gtest/gtest.h>
#include <QProcess>
#include <QThread>

namespace vespra {

namespace {

    using Failure = GlobalShortcut::Failure;

    /// A display of the test's own, on which xdotool is the user.
    class X11ShortcutTest : public testing::Test {
    protected:
        void SetUp() override
        {
            server_.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp"});
            ASSERT_TRUE(server_.waitForReadyRead()) << "Xvfb does not start: scripts/setup installs it";
            qputenv("DISPLAY", ":" + server_.readAllStandardOutput().trimmed());
            qunsetenv("WAYLAND_DISPLAY");
        }
        ~X11ShortcutTest() override
        {
            qunsetenv("DISPLAY");
            server_.kill();
            server_.waitForFinished();
        }

        GlobalShortcut::Outcome set(X11Shortcut& shortcut, KeyCombination keys = defaultToggleSessionKeys)
        {
            shortcut.set({.name = "name",
                .keys = keys,
                .onKeyUp = [this] { ++count; },
                .onOutcome = [this](const GlobalShortcut::Outcome& told) { outcome = told; }});
            return outcome;
        }
        /// How often the shortcut is heard of while the user does this.
        int heard(const QStringList& does)
        {
            count = 0;
            EXPECT_EQ(QProcess::execute("xdotool", does), 0) << "scripts/setup installs xdotool";
            for (int turn = 0; turn < 10; ++turn) {
                QCoreApplication::processEvents();
                QThread::msleep(10);
            }
            return count;
        }

        const QtApplication application;
        QtMainLoop loop;
        int count = 0;
        GlobalShortcut::Outcome outcome;

    private:
        QProcess server_;
    };

    const QStringList press{"key", "ctrl+alt+super+w"};

} // namespace

TEST_F(X11ShortcutTest, IsHeardOnceItIsReleasedWhateverLocksAreOn)
{
    X11Shortcut shortcut{loop};
    ASSERT_TRUE(set(shortcut));
    EXPECT_EQ(heard({"key", "ctrl+alt+w"}), 0);
    for (const auto* lock : {"", "Num_Lock", "Caps_Lock", "Num_Lock"}) {
        if (*lock)
            heard({"key", lock});
        EXPECT_EQ(heard(press), 1) << lock;
    }
    EXPECT_EQ(heard({"keydown", "ctrl+alt+super+w", "sleep", "1.2"}), 0) << "it repeats, but is still down";
    EXPECT_EQ(heard({"keyup", "super"}), 0);
    EXPECT_EQ(heard({"keyup", "w", "keyup", "ctrl", "keyup", "alt"}), 1);
    shortcut.clear("name");
    EXPECT_EQ(heard(press), 0);
}

TEST_F(X11ShortcutTest, BelongsToOneProgram)
{
    X11Shortcut first{loop}, second{loop};
    ASSERT_TRUE(set(first));
    EXPECT_EQ(set(second).error(), Failure::conflict);
    ASSERT_TRUE(set(first, {.control = true, .shift = true, .key = '1'})) << "other keys in their place";
    EXPECT_TRUE(set(second)) << "nothing is left of what failed";
    EXPECT_EQ(heard({"key", "ctrl+shift+1"}), 1);
}

TEST_F(X11ShortcutTest, FollowsTheKeyboard)
{
    X11Shortcut shortcut{loop};
    ASSERT_TRUE(set(shortcut));
    const auto user = connectToX11();
    constexpr xcb_keycode_t w = 25, z = 52;
    const xcb_keysym_t toZ[]{'z', 'Z'}, toW[]{'w', 'W'};
    xcb_change_keyboard_mapping(user.get(), 1, w, 2, toZ);
    xcb_change_keyboard_mapping(user.get(), 1, z, 2, toW);
    xcb_flush(user.get());
    heard({"key", "a"});
    EXPECT_EQ(heard(press), 1);
    EXPECT_EQ(heard({"key", "ctrl+alt+super+z"}), 0);
}

TEST_F(X11ShortcutTest, IsUnavailableWithoutAnXServerOfTheSessionsOwn)
{
    X11Shortcut shortcut{loop};
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_EQ(set(shortcut).error(), Failure::unavailable);
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("DISPLAY", ":987");
    EXPECT_EQ(set(shortcut).error(), Failure::unavailable);
}

} // namespace vespra
