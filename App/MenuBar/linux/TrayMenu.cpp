#include "App/MenuBar/linux/TrayMenu.h"

#include "Core/Lifetime.h"

#include <QDBusMetaType>
#include <QGuiApplication>

#include <algorithm>

namespace vespra {

namespace {

    constexpr int root = 0;
    const QString label = QStringLiteral("label");

    /// An underscore would mark the letter after it as the one to press.
    QString menuLabel(const std::string& title)
    {
        return QString::fromStdString(title).replace(QLatin1Char{'_'}, QStringLiteral("__"));
    }

    /// Those of these names; no names mean all.
    QVariantMap chosen(const QVariantMap& properties, const QStringList& names)
    {
        if (names.isEmpty())
            return properties;
        QVariantMap result;
        for (const auto& name : names)
            if (properties.contains(name))
                result[name] = properties[name];
        return result;
    }

} // namespace

TrayMenu::TrayMenu(QObject* parent)
    : QDBusAbstractAdaptor{parent}
{
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<TrayMenuEntry>();
    qDBusRegisterMetaType<QList<TrayMenuEntry>>();
    qDBusRegisterMetaType<TrayMenuLayout>();
    qDBusRegisterMetaType<TrayMenuRemoval>();
    qDBusRegisterMetaType<QList<TrayMenuRemoval>>();
    qDBusRegisterMetaType<TrayMenuEvent>();
    qDBusRegisterMetaType<QList<TrayMenuEvent>>();
}

/// What concerns the session, a line, what concerns the application.
std::vector<TrayMenu::Row> TrayMenu::rowsFor(const std::vector<StatusMenuEntry>& entries)
{
    std::vector<Row> rows;
    const auto add = [&](const QString& name, const QString& value, std::optional<StatusMenuAction> action) {
        rows.push_back({static_cast<int>(rows.size()) + 1, {{name, value}}, action});
    };
    for (const auto& entry : entries) {
        if (entry.action == StatusMenuAction::openSettings)
            add(QStringLiteral("type"), QStringLiteral("separator"), {});
        add(label, menuLabel(entry.title), entry.action);
    }
    return rows;
}

void TrayMenu::setEntries(const std::vector<StatusMenuEntry>& entries)
{
    const auto before = std::exchange(rows_, rowsFor(entries));
    if (!std::ranges::equal(before, rows_, {}, &Row::action, &Row::action)) {
        Q_EMIT LayoutUpdated(++revision_, root);
        return;
    }
    QList<TrayMenuEntry> updated;
    for (std::size_t index = 0; index < rows_.size(); ++index)
        if (rows_[index] != before[index])
            updated.push_back({rows_[index].id, rows_[index].properties});
    if (!updated.isEmpty())
        Q_EMIT ItemsPropertiesUpdated(updated, {});
}

QString TrayMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

const TrayMenu::Row* TrayMenu::row(int id) const
{
    const auto found = std::ranges::find(rows_, id, &Row::id);
    return found == rows_.end() ? nullptr : &*found;
}

std::optional<QVariantMap> TrayMenu::properties(int id) const
{
    if (id == root)
        return QVariantMap{{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    const auto* found = row(id);
    return found ? std::optional{found->properties} : std::nullopt;
}

uint TrayMenu::GetLayout(int parent, int depth, const QStringList& names, TrayMenuLayout& layout) const
{
    layout = {.id = parent, .properties = chosen(properties(parent).value_or(QVariantMap{}), names), .children = {}};
    if (parent == root && depth != 0)
        for (const auto& row : rows_)
            layout.children << QVariant::fromValue(
                TrayMenuLayout{.id = row.id, .properties = chosen(row.properties, names), .children = {}});
    return revision_;
}

QList<TrayMenuEntry> TrayMenu::GetGroupProperties(const QList<int>& ids, const QStringList& names) const
{
    QList<TrayMenuEntry> found;
    const auto add = [&](int id) {
        if (const auto all = properties(id))
            found.push_back({id, chosen(*all, names)});
    };
    if (ids.isEmpty())
        for (const auto& row : rows_)
            add(row.id);
    for (const int id : ids)
        add(id);
    return found;
}

QDBusVariant TrayMenu::GetProperty(int id, const QString& name) const
{
    return QDBusVariant{properties(id).value_or(QVariantMap{}).value(name, QString{})};
}

void TrayMenu::Event(int id, const QString& name, const QDBusVariant&, uint)
{
    const auto* chosen = row(id);
    if (name == QLatin1String{"clicked"} && chosen && chosen->action)
        notify(onChoose, *chosen->action);
}

QList<int> TrayMenu::EventGroup(const QList<TrayMenuEvent>& events)
{
    QList<int> unknown;
    for (const auto& event : events)
        if (properties(event.id))
            Event(event.id, event.name, event.data, event.time);
        else
            unknown << event.id;
    return unknown;
}

QList<int> TrayMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& unknown) const
{
    std::ranges::copy_if(ids, std::back_inserter(unknown), [this](int id) { return !properties(id); });
    return {};
}

} // namespace vespra
