#include "App/System/linux/PortalShortcut.h"

#include <algorithm>
#include <QDBusArgument>
#include <QDBusMetaType>

namespace vespra {

namespace {

    /// A shortcut as the portal writes it: (sa{sv}).
    struct PortalEntry {
        QString name;
        QVariantMap properties;
    };
    using PortalEntries = QList<PortalEntry>;

    QDBusArgument& operator<<(QDBusArgument& argument, const PortalEntry& entry)
    {
        argument.beginStructure();
        argument << entry.name << entry.properties;
        argument.endStructure();
        return argument;
    }

    const QDBusArgument& operator>>(const QDBusArgument& argument, PortalEntry& entry)
    {
        argument.beginStructure();
        argument >> entry.name >> entry.properties;
        argument.endStructure();
        return argument;
    }

    QString interface() { return QStringLiteral("org.freedesktop.portal.GlobalShortcuts"); }

    /// "CTRL+ALT+LOGO+w", as portals write keys.
    QString trigger(const KeyCombination& keys)
    {
        QString text;
        for (const auto& [isWanted, name] :
            {std::pair{keys.control, "CTRL+"}, {keys.alt, "ALT+"}, {keys.shift, "SHIFT+"}, {keys.super, "LOGO+"}})
            if (isWanted)
                text += QLatin1String{name};
        return text + QLatin1Char{keys.key};
    }

    /// What the desktop says of the shortcut `name` among `entries`.
    GlobalShortcut::Outcome outcome(const QVariant& entries, const QString& name)
    {
        const auto all = qdbus_cast<PortalEntries>(entries);
        const auto found = std::ranges::find(all, name, &PortalEntry::name);
        const auto keys = found == all.end()
            ? QString{}
            : found->properties.value(QStringLiteral("trigger_description")).toString();
        if (keys.isEmpty())
            return std::unexpected{GlobalShortcut::Failure::unassigned};
        return keys.toStdString();
    }

    /// Portals disagree on the type.
    QString objectPath(const QVariant& value)
    {
        return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path() : value.toString();
    }

    constexpr auto unavailable = GlobalShortcut::Failure::unavailable;

} // namespace

PortalShortcut::PortalShortcut(MainLoop& mainLoop, const QString& desktopEntry)
    : mainLoop_{mainLoop}
    // Only programs in a sandbox are known by themselves; what does not know of this finds out by other means.
    , registration_{dbus::call(dbus::sessionBus(),
          portal(QStringLiteral("org.freedesktop.host.portal.Registry"))
              .method(QStringLiteral("Register"), {desktopEntry, QVariantMap{}}),
          dbus::readingTimeout, [](const QDBusMessage&) {})}
    , releases_{dbus::sessionBus(),
          portal(interface()),
          QStringLiteral("Deactivated"),
          [this](const QDBusMessage& signal) { released(signal); }}
    , changes_{dbus::sessionBus(),
          portal(interface()),
          QStringLiteral("ShortcutsChanged"),
          [this](const QDBusMessage& signal) { changed(signal); }}
    , owner_{dbus::sessionBus(), portal(interface()).service, [this](bool owned) { ownerChanged(owned); }}
{
    qDBusRegisterMetaType<PortalEntry>();
    qDBusRegisterMetaType<PortalEntries>();
}

PortalShortcut::~PortalShortcut()
{
    for (const auto& [name, shortcut] : shortcuts_)
        close(shortcut);
}

template <class Action> void PortalShortcut::later(const std::string& name, Action action)
{
    mainLoop_.post(lifetime_.guard([this, name, action] {
        if (const auto found = shortcuts_.find(name); found != shortcuts_.end())
            action(Request{found->second.request}); // it may be replaced meanwhile
    }));
}

void PortalShortcut::set(Request request)
{
    clear(request.name);
    const auto name = request.name;
    shortcuts_[name].request = std::move(request);
    ask(name);
}

void PortalShortcut::clear(std::string_view name)
{
    const auto found = shortcuts_.find(name);
    if (found == shortcuts_.end())
        return;
    close(found->second);
    shortcuts_.erase(found);
}

void PortalShortcut::close(const Shortcut& shortcut)
{
    if (shortcut.session.isEmpty())
        return;
    auto target = portal(QStringLiteral("org.freedesktop.portal.Session"));
    target.path = shortcut.session;
    dbus::sessionBus().send(target.method(QStringLiteral("Close")));
}

void PortalShortcut::ask(const std::string& name)
{
    shortcuts_[name].creation = std::make_unique<PortalRequest>(interface(),
        QStringLiteral("CreateSession"),
        QVariantList{},
        QVariantMap{{QStringLiteral("session_handle_token"), PortalRequest::newToken()}},
        [this, name](const PortalRequest::Response& response) { created(name, response); });
}

void PortalShortcut::created(const std::string& name, const PortalRequest::Response& response)
{
    if (!response)
        return tell(name, std::unexpected{unavailable});
    auto& shortcut = shortcuts_[name];
    shortcut.session = objectPath(response->value(QStringLiteral("session_handle")));
    const PortalEntries entries{{QString::fromStdString(name),
        {{QStringLiteral("description"), QString::fromStdString(shortcut.request.description)},
            {QStringLiteral("preferred_trigger"), trigger(shortcut.request.keys)}}}};
    shortcut.binding = std::make_unique<PortalRequest>(interface(),
        QStringLiteral("BindShortcuts"),
        QVariantList{QVariant::fromValue(QDBusObjectPath{shortcut.session}),
            QVariant::fromValue(entries),
            QString{} /* window */},
        QVariantMap{},
        [this, name](const PortalRequest::Response& bindings) { bound(name, bindings); });
}

void PortalShortcut::bound(const std::string& name, const PortalRequest::Response& response)
{
    const auto entries = response.value_or(QVariantMap{}).value(QStringLiteral("shortcuts"));
    tell(name, outcome(entries, QString::fromStdString(name)));
}

void PortalShortcut::tell(const std::string& name, const Outcome& outcome)
{
    later(name, [outcome](const Request& request) { notify(request.onOutcome, outcome); });
}

void PortalShortcut::ownerChanged(bool owned)
{
    for (auto& [name, shortcut] : shortcuts_) {
        shortcut.session.clear();
        shortcut.binding.reset();
        if (owned)
            ask(name);
        else
            tell(name, std::unexpected{unavailable});
    }
}

void PortalShortcut::released(const QDBusMessage& signal)
{
    const auto session = objectPath(signal.arguments().value(0));
    const auto name = signal.arguments().value(1).toString().toStdString();
    if (const auto found = shortcuts_.find(name); found != shortcuts_.end() && found->second.session == session)
        later(name, [](const Request& request) { notify(request.onKeyUp); });
}

void PortalShortcut::changed(const QDBusMessage& signal)
{
    const auto session = objectPath(signal.arguments().value(0));
    for (const auto& [name, shortcut] : shortcuts_)
        if (shortcut.session == session)
            tell(name, outcome(signal.arguments().value(1), QString::fromStdString(name)));
}

} // namespace vespra
