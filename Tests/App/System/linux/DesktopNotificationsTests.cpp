#include "App/System/linux/DesktopNotifications.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/QtApplication.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;

    constexpr auto server = "org.freedesktop.Notifications", path = "/org/freedesktop/Notifications";

    class Notifications : public BusTest {
    protected:
        Notifications()
        {
            center.setCategories({{"category", {{"extend", "+15 min"}}}});
            center.onResponse = [this](const NotificationResponse& response) {
                told.push_back(response.notification + "/" + response.action);
            };
        }

        /// "1 replaces 0: Title" of each that is shown.
        static std::vector<std::string> shown()
        {
            settle();
            std::vector<std::string> all;
            for (const auto& [id, arguments] : bus().notifications())
                all.push_back(std::to_string(id) + " replaces " + arguments.value(1).toString().toStdString() + ": "
                    + arguments.value(3).toString().toStdString());
            return all;
        }
        static void waitUntilShown(const std::vector<std::string>& expected)
        {
            QtApplication::runUntil([&] { return shown() == expected; });
        }
        static void emitSignal(const char* name, const QVariantList& arguments)
        {
            bus().emitSignal(path, server, name, arguments);
            settle();
        }
        void post(const std::string& identifier, const std::string& title)
        {
            center.post({.identifier = identifier, .title = title, .body = {}, .category = "category"});
        }

        void showTwo()
        {
            bus().own(server);
            post("a", "A");
            post("b", "B");
            waitUntilShown({"1 replaces 0: A", "2 replaces 0: B"});
        }

        std::vector<std::string> told;
        DesktopNotifications center{"Vespra", "app.vespra.Vespra", SystemLog{"app", "test"}};
    };

} // namespace

TEST_F(Notifications, AreAsTheServerCanShowThem)
{
    const UserNotification notification{"id", "5 < 6", "a <b> & \"c\"", "category", "Show"};
    const QString escaped = "a &lt;b&gt; &amp; &quot;c&quot;";
    const QStringList buttons{"extend", "+15 min", "default", "Show"}, noButtons;
    struct Row {
        const char* capability;
        QString body;
        QStringList actions;
        QString sound;
        int timeout;
    };
    const QString plain = QString::fromStdString(notification.body);
    for (const auto& row : std::vector<Row>{
             {"body", plain, noButtons, {}, -1},
             {"actions", plain, buttons, {}, 60000},
             {"body-markup", escaped, noButtons, {}, -1},
             {"sound", plain, noButtons, "String message-new-instant", -1},
         }) {
        SCOPED_TRACE(row.capability);
        bus().reset();
        settle();
        bus().setCapabilities({row.capability});
        bus().own(server);
        center.post(notification);
        waitUntilShown({"1 replaces 0: 5 < 6"});
        const auto arguments = bus().notifications()[1];
        EXPECT_EQ(arguments.value(0), "Vespra");
        EXPECT_EQ(arguments.value(4), row.body);
        EXPECT_EQ(arguments.value(5).toStringList(), row.actions);
        EXPECT_EQ(arguments.value(7), row.timeout);
        const auto hints = arguments.value(6).toMap();
        EXPECT_EQ(hints["desktop-entry"], "String app.vespra.Vespra");
        EXPECT_TRUE(hints["urgency"].toString().startsWith("Byte ")) << "some read nothing but a byte";
        EXPECT_EQ(hints["sound-name"].toString(), row.sound);
    }
}

TEST_F(Notifications, ReplaceTheShownOneOfTheSameIdentifier)
{
    showTwo();
    post("a", "A2");
    waitUntilShown({"1 replaces 1: A2", "2 replaces 0: B"});
    emitSignal("NotificationClosed", {1U, 2U});
    post("a", "A3");
    waitUntilShown({"1 replaces 1: A2", "2 replaces 0: B", "3 replaces 0: A3"});
}

TEST_F(Notifications, PostedBeforeTheServerAnswersAreNeitherLostNorDoubled)
{
    bus().own(server);
    bus().keepBack("GetCapabilities");
    post("a", "A");
    post("b", "B");
    post("c", "C");
    post("a", "A2");
    center.removeDelivered({"b"});
    EXPECT_THAT(shown(), IsEmpty());
    bus().answer();
    waitUntilShown({"1 replaces 0: C", "2 replaces 0: A2"});
}

TEST_F(Notifications, AreClosedEvenIfTheServerShowsThemLate)
{
    showTwo();
    center.removeDelivered({"a", "never shown"});
    waitUntilShown({"2 replaces 0: B"});

    bus().keepBack("Notify");
    post("c", "C");
    post("d", "D");
    settle();
    center.removeDelivered({"c"});
    post("d", "D2"); // the number of the first is not known yet
    settle();
    bus().answer();
    waitUntilShown({"2 replaces 0: B", "5 replaces 0: D2"});
    center.removeDelivered({"d"});
    waitUntilShown({"2 replaces 0: B"});
}

TEST_F(Notifications, HandOnWhatTheUserDoesWithThem)
{
    showTwo();
    emitSignal("ActionInvoked", {1U, "extend"});
    emitSignal("ActionInvoked", {2U, "default"});
    emitSignal("ActionInvoked", {3U, "extend"}); // of another program
    EXPECT_THAT(std::exchange(told, {}), ElementsAre("a/extend", "b/"));
    emitSignal("NotificationClosed", {1U, 1U});
    emitSignal("ActionInvoked", {1U, "extend"});
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Notifications, OfAServerThatIsGoneAreForgotten)
{
    bus().own(server);
    post("a", "A");
    waitUntilShown({"1 replaces 0: A"});
    bus().restart(server);
    bus().setCapabilities({"actions"});
    settle();
    emitSignal("ActionInvoked", {1U, "extend"});
    EXPECT_THAT(told, IsEmpty());
    post("b", "B");
    waitUntilShown({"1 replaces 0: B"});
    EXPECT_EQ(bus().notifications()[1].value(5).toStringList().size(), 2)
        << "its capabilities are those of the old one";
    center.removeDelivered({"a"});
    EXPECT_THAT(shown(), ElementsAre("1 replaces 0: B"));
    post("a", "A2");
    waitUntilShown({"1 replaces 0: B", "2 replaces 0: A2"});
    EXPECT_THAT(log.messages, IsEmpty());
}

TEST_F(Notifications, AreTriedOnceMoreWhereTheServerCrashes)
{
    bus().own(server);
    for (const auto* member : {"GetCapabilities", "Notify"}) {
        SCOPED_TRACE(member);
        bus().restart(server);
        settle();
        bus().keepBack(member);
        post("a", "A");
        settle();
        bus().refuse();
        waitUntilShown({"1 replaces 0: A"});
    }
    bus().keepBack("Notify");
    post("b", "B1");
    settle();
    bus().restart(server); // while it is on its way
    settle();
    bus().keepBack("GetCapabilities");
    post("b", "B2");
    settle();
    bus().refuse();
    waitUntilShown({"1 replaces 0: B2"});
    EXPECT_THAT(log.messages, IsEmpty());
}

TEST_F(Notifications, OfAProgramThatEndsAreShownYet)
{
    bus().own(server);
    bus().setCapabilities({"actions"});
    auto leaving = std::make_unique<DesktopNotifications>("Vespra", "entry", SystemLog{"app", "test"});
    leaving->post({.identifier = "a", .title = "A", .body = {}, .clickTitle = "Show"});
    leaving.reset();
    waitUntilShown({"1 replaces 0: A"});
    EXPECT_THAT(bus().notifications()[1].value(5).toStringList(), IsEmpty()) << "nobody would hear of a click";
}

TEST_F(Notifications, WithoutAServerAreLoggedOnceAndDropped)
{
    post("a", "A");
    QtApplication::runUntil([&] { return !log.messages.empty(); });
    EXPECT_THAT(
        log.messages, ElementsAre(testing::HasSubstr("Notification impossible : org.freedesktop.DBus.Error.Serv")));
    post("a", "A");
    post("b", "B");
    settle();
    EXPECT_EQ(log.messages.size(), 1U);
    bus().own(server);
    EXPECT_THAT(shown(), IsEmpty()) << "old news";
    post("a", "A2");
    waitUntilShown({"1 replaces 0: A2"});
}

/// Last: the bus keeps what can be started on it.
TEST_F(Notifications, StartTheServer)
{
    const TemporaryDirectory folder;
    bus().makeActivatable(server, "/bin/sh -c \"touch " + (folder / "started").string() + "; exit 1\"");
    settle();
    EXPECT_FALSE(exists(folder / "started")) << "though there is nothing to show";
    post("a", "A");
    // It fails, which answers what was asked of it.
    while (!exists(folder / "started") || log.messages.empty())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

} // namespace vespra
