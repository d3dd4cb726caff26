#include "App/MenuBar/linux/LinuxStatusItem.h"
#include "App/System/QtMainLoop.h"
#include "Tests/Support/MockBus.h"
#include "Tests/Support/QtApplication.h"

namespace vespra {

namespace {

    constexpr auto watcher = "org.kde.StatusNotifierWatcher", watcherPath = "/StatusNotifierWatcher",
                   sni = "org.kde.StatusNotifierItem", menuInterface = "com.canonical.dbusmenu";

    class AppearanceByHand final : public AppearanceMonitoring {
    public:
        using AppearanceMonitoring::update;
    };

    /// What a panel sees of the item, over a connection of its own.
    class Tray : public BusTest {
    protected:
        QDBusMessage ask(const dbus::Target& target, const QString& method, const QVariantList& arguments)
        {
            std::optional<QDBusMessage> answer;
            const auto call = dbus::call(
                panel, target.method(method, arguments), dbus::untilAnswered, [&](auto& reply) { answer = reply; });
            QtApplication::runUntil([&] { return answer.has_value(); });
            return *answer;
        }
        QVariant property(const QString& name)
        {
            const dbus::Target properties{service(), StatusNotifierItem::path, "org.freedesktop.DBus.Properties"};
            return ask(properties, "Get", {QString{sni}, name}).arguments().value(0).value<QDBusVariant>().variant();
        }
        /// The signals that arrived since the last time.
        std::string signalled()
        {
            settle();
            return std::exchange(heard, {});
        }
        void choose(int id)
        {
            ask(menu(), "Event", {id, "clicked", QVariant::fromValue(QDBusVariant{0}), 0U});
            settle();
        }
        static QString service() { return dbus::sessionBus().baseService(); }
        static dbus::Target menu() { return {service(), TrayMenu::path, menuInterface}; }
        dbus::SignalWatch hear(const dbus::Target& target, const QString& signal)
        {
            return {panel, target, signal, [this](const QDBusMessage& message) {
                        heard += message.member().toStdString() + " ";
                    }};
        }
        /// How often a tray was asked to show the item.
        static int registrations()
        {
            settle();
            return bus().deeds().count("RegisterStatusNotifierItem");
        }

        Tray() { qputenv("XDG_CURRENT_DESKTOP", "KDE"); }

        QDBusConnection panel = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "panel");
        std::string heard;
        QtMainLoop mainLoop;
        AppearanceByHand appearance;
        std::unique_ptr<LinuxStatusItem> made = std::make_unique<LinuxStatusItem>(mainLoop, appearance);
        LinuxStatusItem& item = *made;
        StatusItemContent content{.accessibilityLabel = "Vespra",
            .toolTip = "No session",
            .menu = {{StatusMenuAction::toggleSession, "Start_it"}, {StatusMenuAction::openSettings, "Settings…"}}};
    };

} // namespace

TEST_F(Tray, IsToldOfTheItemWheneverItComes)
{
    item.show(content);
    EXPECT_EQ(item.presence(), StatusItem::Presence::unknown);
    settle();
    EXPECT_EQ(item.presence(), StatusItem::Presence::absent) << "no tray";
    bus().own(watcher);
    EXPECT_EQ(registrations(), 1);
    EXPECT_TRUE(item.isShown());
    bus().restart(watcher);
    EXPECT_EQ(registrations(), 2);
    EXPECT_TRUE(item.isShown());
    bus().set(R"({"hasHost": false})");
    bus().emitSignal(watcherPath, watcher, "StatusNotifierHostUnregistered", {});
    settle();
    EXPECT_FALSE(item.isShown()) << "no panel shows what the watcher knows";
    bus().set(R"({"hasHost": true})");
    bus().emitSignal(watcherPath, watcher, "StatusNotifierHostRegistered", {});
    settle();
    EXPECT_TRUE(item.isShown());
    bus().keepBack("RegisterStatusNotifierItem");
    bus().restart(watcher);
    settle();
    EXPECT_FALSE(item.isShown()) << "the new tray does not answer";
    bus().disown(watcher);
    settle();
    EXPECT_EQ(item.presence(), StatusItem::Presence::absent);
}

TEST_F(Tray, HearsOfWhatChangedAndNothingElse)
{
    item.show(content);
    const dbus::Target published{service(), StatusNotifierItem::path, sni};
    std::vector<std::unique_ptr<dbus::SignalWatch>> watches;
    for (const char* signal : {"NewIcon", "NewTitle", "NewToolTip", "XAyatanaNewLabel"})
        watches.emplace_back(new dbus::SignalWatch{hear(published, signal)});
    for (const char* signal : {"ItemsPropertiesUpdated", "LayoutUpdated"})
        watches.emplace_back(new dbus::SignalWatch{hear(menu(), signal)});
    EXPECT_EQ(signalled(), "");
    item.show(content);
    EXPECT_EQ(signalled(), "");
    content.title = " 0:59";
    item.show(content);
    EXPECT_EQ(signalled(), "XAyatanaNewLabel ");
    EXPECT_EQ(property("XAyatanaLabel"), "0:59");
    const auto idle = qdbus_cast<TrayImages>(property("IconPixmap")).value(0);
    content.isActive = true;
    content.menu[0].title = "Stop";
    item.show(content);
    EXPECT_EQ(signalled(), "ItemsPropertiesUpdated NewIcon ");
    const auto active = qdbus_cast<TrayImages>(property("IconPixmap")).value(0);
    EXPECT_EQ(active.width, 22);
    EXPECT_EQ(active.pixels.size(), 22 * 22 * 4);
    EXPECT_NE(active.pixels, idle.pixels);
    EXPECT_TRUE(active.pixels.contains("\xFF\xF4\xB1\x3E")) << "the dot: alpha, red, green, blue";
    appearance.update({.isDark = true});
    EXPECT_EQ(signalled(), "NewIcon ");
    appearance.update({.isDark = true, .reducesMotion = true});
    EXPECT_EQ(signalled(), "");
}

TEST_F(Tray, ShowsNoTextWhereThatHidesTheIcon)
{
    item.show(content);
    EXPECT_TRUE(property("XAyatanaLabel").isValid());
    qputenv("XDG_CURRENT_DESKTOP", "MATE");
    made.reset();
    LinuxStatusItem mates{mainLoop, appearance};
    EXPECT_FALSE(mates.features().hasTitle);
    mates.show(content);
    EXPECT_FALSE(property("XAyatanaLabel").isValid());
    EXPECT_EQ(property("Title"), "Vespra");
}

TEST_F(Tray, OffersTheMenu)
{
    item.show(content);
    std::vector<StatusMenuAction> chosen;
    item.onChoose = [&](StatusMenuAction action) { chosen.push_back(action); };
    const auto reply = ask(menu(), "GetLayout", {0, -1, QStringList{"label"}}).arguments();
    const auto layout = qdbus_cast<TrayMenuLayout>(reply.value(1));
    QStringList labels;
    for (const auto& child : layout.children) {
        const auto entry = qdbus_cast<TrayMenuLayout>(child);
        labels << entry.properties["label"].toString() + QString::number(entry.id);
    }
    EXPECT_EQ(labels.join(",").toStdString(), "Start__it1,2,Settings…3");
    choose(1);
    choose(2); // the line
    choose(77);
    choose(3);
    EXPECT_EQ(chosen, (std::vector{StatusMenuAction::toggleSession, StatusMenuAction::openSettings}));
    const QList<int> ids{1, 77};
    const auto unknown = ask(menu(), "AboutToShowGroup", {QVariant::fromValue(ids)}).arguments().value(1);
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown), QList<int>{77});
}

TEST_F(Tray, ClicksAsOneDoes)
{
    item.show(content);
    int clicks = 0;
    item.onClick = [&](StatusItem::Click click) { clicks += click == StatusItem::Click::primary ? 1 : 100; };
    const dbus::Target target{service(), StatusNotifierItem::path, sni};
    for (const char* method : {"Activate", "ContextMenu", "SecondaryActivate"})
        ask(target, method, {10, 10});
    EXPECT_EQ(clicks, 1) << "a right click opens no panel";
}

} // namespace vespra
