#include "App/MenuBar/linux/LinuxStatusItem.h"
#include "App/System/QtMainLoop.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/QtApplication.h"

namespace vespra {

namespace {

    using Presence = StatusItem::Presence;

    class AppearanceByHand final : public AppearanceMonitoring {
    public:
        using AppearanceMonitoring::update;
    };

    /// What a panel sees of the item, over a connection of its own.
    class Tray : public BusTest {
    protected:
        Tray() { qputenv("XDG_CURRENT_DESKTOP", "KDE"); }

        static dbus::Target target(const char* path, const char* interface)
        {
            return {dbus::sessionBus().baseService(), path, interface};
        }
        QVariantList ask(const dbus::Target& whom, const QString& method, const QVariantList& arguments)
        {
            std::optional<QVariantList> answer;
            const auto call = dbus::call(panel, whom.method(method, arguments), dbus::untilAnswered, [&](auto& reply) {
                answer = reply.arguments();
            });
            QtApplication::runUntil([&] { return answer.has_value(); });
            return *answer;
        }
        QVariant property(const QString& name)
        {
            const auto properties = target(StatusNotifierItem::path, "org.freedesktop.DBus.Properties");
            return ask(properties, "Get", {published.interface, name}).value(0).value<QDBusVariant>().variant();
        }
        dbus::SignalWatch hear(const dbus::Target& whom)
        {
            return {panel, whom, {}, [this](auto& signal) { heard += signal.member().toStdString() + " "; }};
        }
        /// The signals since the last time.
        std::string signalled()
        {
            settle();
            return std::exchange(heard, {});
        }

        const char* watcher = "org.kde.StatusNotifierWatcher";
        dbus::Target published = target(StatusNotifierItem::path, "org.kde.StatusNotifierItem");
        dbus::Target menu = target(TrayMenu::path, "com.canonical.dbusmenu");
        QDBusConnection panel = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "panel");
        std::string heard;
        QtMainLoop mainLoop;
        AppearanceByHand appearance;
        std::unique_ptr<StatusItem> item = std::make_unique<LinuxStatusItem>(mainLoop, appearance);
        StatusItemContent content{.accessibilityLabel = "Vespra",
            .toolTip = "No session",
            .menu = {{StatusMenuAction::toggleSession, "Start_it"}, {StatusMenuAction::openSettings, "Settings…"}}};
    };

} // namespace

TEST_F(Tray, IsToldOfTheItemWheneverItComes)
{
    item->show(content);
    EXPECT_EQ(item->presence(), Presence::unknown);
    settle();
    EXPECT_EQ(item->presence(), Presence::absent) << "no tray";
    bus().own(watcher);
    settle();
    EXPECT_TRUE(item->isShown());
    bus().restart(watcher);
    settle();
    EXPECT_EQ(bus().deeds().count("RegisterStatusNotifierItem"), 2);
    bus().set(R"({"hasHost": false})");
    bus().emitSignal("/StatusNotifierWatcher", watcher, "StatusNotifierHostUnregistered", {});
    settle();
    EXPECT_FALSE(item->isShown()) << "no panel shows what the watcher knows";
    bus().keepBack("RegisterStatusNotifierItem");
    bus().restart(watcher);
    settle();
    EXPECT_EQ(item->presence(), Presence::absent) << "the new tray does not answer";
}

TEST_F(Tray, HearsOfWhatChangedAndNothingElse)
{
    item->show(content);
    const auto itemSignals = hear(published), menuSignals = hear(menu);
    item->show(content);
    EXPECT_EQ(signalled(), "");
    content.title = " 0:59";
    item->show(content);
    EXPECT_EQ(signalled(), "XAyatanaNewLabel ");
    EXPECT_EQ(property("XAyatanaLabel"), "0:59");
    content.isActive = true;
    content.menu[0].title = "Stop";
    item->show(content);
    EXPECT_EQ(signalled(), "ItemsPropertiesUpdated NewIcon ");
    const auto icon = qdbus_cast<TrayImages>(property("IconPixmap")).value(0);
    EXPECT_TRUE(icon.pixels.contains("\xFF\xF4\xB1\x3E")) << "the dot: alpha, red, green, blue";
    appearance.update({.isDark = true});
    EXPECT_EQ(signalled(), "NewIcon ");
}

TEST_F(Tray, OfMateGetsNoTextWhichWouldHideTheIcon)
{
    item.reset();
    qputenv("XDG_CURRENT_DESKTOP", "MATE");
    item = std::make_unique<LinuxStatusItem>(mainLoop, appearance);
    item->show(content);
    EXPECT_FALSE(item->features().hasTitle);
    EXPECT_FALSE(property("XAyatanaLabel").isValid());
    EXPECT_EQ(property("Title"), "Vespra");
}

TEST_F(Tray, ShowsTheMenuAndTellsOfClicks)
{
    std::string told;
    item->show(content);
    item->onChoose = [&](StatusMenuAction action) { told += action == StatusMenuAction::openSettings ? "S" : "T"; };
    item->onClick = [&](StatusItem::Click) { told += "click"; };
    const auto layout = qdbus_cast<TrayMenuLayout>(ask(menu, "GetLayout", {0, -1, QStringList{"label"}}).value(1));
    std::string labels;
    for (const auto& child : layout.children)
        labels += qdbus_cast<TrayMenuLayout>(child).properties["label"].toString().toStdString() + "|";
    EXPECT_EQ(labels, "Start__it||Settings…|");
    for (const int id : {1, 2, 77, 3}) // 2 is a line
        ask(menu, "Event", {id, "clicked", QVariant::fromValue(QDBusVariant{0}), 0U});
    for (const char* method : {"Activate", "ContextMenu", "SecondaryActivate"})
        ask(published, method, {10, 10});
    settle();
    EXPECT_EQ(told, "TSclick") << "a right click opens no panel";
}

} // namespace vespra
