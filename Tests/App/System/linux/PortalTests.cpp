#include "App/System/linux/PortalAutostart.h"
#include "App/System/linux/PortalShortcut.h"
#include "App/System/QtMainLoop.h"
#include "Core/Scheduling/VirtualTime.h"
#include "Tests/Support/MockBus.h"

#include <gmock/gmock.h>
#include <QDBusObjectPath>

namespace vespra {

namespace {

    using testing::HasSubstr;
    using Failure = GlobalShortcut::Failure;

    class PortalTest : public BusTest {
    protected:
        /// What became of the shortcut; "none" if nothing is told.
        std::string told()
        {
            settle();
            return std::exchange(told_, "none");
        }
        void set(PortalShortcut& shortcut)
        {
            shortcut.set({.name = "toggle",
                .description = "Start",
                .keys = {.control = true, .super = true, .key = '7'},
                .onKeyUp = [this] { ++count; },
                .onOutcome =
                    [this](const GlobalShortcut::Outcome& outcome) {
                        told_ = outcome ? *outcome : "failure " + std::to_string(static_cast<int>(outcome.error()));
                    }});
        }
        static std::string failure(Failure why) { return "failure " + std::to_string(static_cast<int>(why)); }
        void press(const char* session, const char* signal)
        {
            bus().emitSignal("/org/freedesktop/portal/desktop",
                "org.freedesktop.portal.GlobalShortcuts",
                signal,
                {QVariant::fromValue(QDBusObjectPath{session}), "toggle", 1ULL, QVariantMap{}});
            settle();
        }

        const QString portalName = "org.freedesktop.portal.Desktop";
        QtMainLoop loop;
        int count = 0;

    private:
        std::string told_ = "none";
    };

} // namespace

TEST_F(PortalTest, GivesTheKeysThatTheUserChoseForAsLongAsItIsThere)
{
    constexpr const char* first = R"({"portal": {"CreateSession": [0, {"session_handle": "/s1"}],
        "BindShortcuts": [0, {"shortcuts": [["toggle", {"trigger_description": "Meta+9"}]]}]}})";
    PortalShortcut shortcut{loop, "app.vespra.Vespra"};
    set(shortcut);
    EXPECT_EQ(told(), failure(Failure::unavailable)) << "there is no portal";
    bus().set(first);
    bus().own(portalName);
    EXPECT_EQ(told(), "Meta+9");
    EXPECT_THAT(bus().deeds().toStdString(), testing::AllOf(HasSubstr("CTRL+LOGO+7"), HasSubstr("Start")));
    press("/s1", "Activated");
    EXPECT_EQ(count, 0);
    press("/s1", "Deactivated");
    press("/other", "Deactivated");
    EXPECT_EQ(count, 1);

    for (const auto* refusal : {R"({"portal": {"CreateSession": [0, {"session_handle": "/s2"}],
             "BindShortcuts": [0, {"shortcuts": [["toggle", {"trigger_description": ""}]]}]}})",
             R"({"portal": {"CreateSession": [0, {"session_handle": "/s2"}], "BindShortcuts": [1, {}]}})"}) {
        bus().set(refusal);
        set(shortcut);
        EXPECT_EQ(told(), failure(Failure::unassigned)) << refusal;
    }
    EXPECT_THAT(bus().deeds().toStdString(), HasSubstr("Close")) << "a session takes keys only once";
    bus().set(R"({"portal": {}})");
    set(shortcut);
    EXPECT_EQ(told(), failure(Failure::unavailable)) << "a portal without shortcuts";

    bus().set(first);
    set(shortcut);
    EXPECT_EQ(told(), "Meta+9");
    bus().disown(portalName);
    EXPECT_EQ(told(), failure(Failure::unavailable));
    bus().own(portalName);
    EXPECT_EQ(told(), "Meta+9");
    set(shortcut);
    shortcut.clear("toggle");
    press("/s1", "Deactivated");
    EXPECT_EQ(told(), "none");
    EXPECT_EQ(count, 1);
}

TEST_F(PortalTest, OpensAnApplicationInASandboxAtLoginIfTheUserAllowsIt)
{
    const TemporaryDirectory folder;
    PortalAutostart login{QString::fromStdString(folder / "config/login-item"), "Vespra", {"vespra"}, {"app", "test"}};
    int changes = 0;
    login.onChange = [&] { ++changes; };
    struct Row {
        const char* answer;
        bool asksToStart, isEnabled;
        const char* logged;
    };
    for (const auto& [answer, asksToStart, isEnabled, logged] : std::initializer_list<Row>{
             {R"([0, {"autostart": false}])", true, false, "refusée"},
             {R"([0, {"autostart": true}])", true, true, ""},
             {R"([2, {}])", false, true, "ne la retire pas"},
             {R"([0, {"autostart": false}])", false, false, ""},
             {R"([1, {}])", true, false, "refusée"},
         }) {
        SCOPED_TRACE(answer);
        bus().own(portalName);
        bus().set((R"({"portal": {"RequestBackground": )" + std::string{answer} + "}}").c_str());
        log.messages.clear();
        ASSERT_TRUE(asksToStart ? login.registerApplication() : login.unregisterApplication());
        settle();
        EXPECT_EQ(login.status() == LoginServiceStatus::enabled, isEnabled);
        EXPECT_EQ(std::exchange(changes, 0), 1);
        EXPECT_THAT(testing::PrintToString(log.messages), HasSubstr(logged));
        EXPECT_EQ(log.messages.empty(), !*logged);
    }
}

} // namespace vespra
