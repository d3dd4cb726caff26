#pragma once

#include "App/MenuBar/linux/BusStructure.h"
#include "App/MenuBar/StatusItem.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

namespace vespra {

// The menu's values on the bus. Slots and signals spell out their types: Qt finds those by their names.

struct TrayMenuEntry {
    int id = 0;
    QVariantMap properties;

    static auto fields(auto& value) { return std::tie(value.id, value.properties); }
};

struct TrayMenuLayout {
    int id = 0;
    QVariantMap properties;
    QVariantList children; // each a TrayMenuLayout

    static auto fields(auto& value) { return std::tie(value.id, value.properties, value.children); }
};

struct TrayMenuRemoval {
    int id = 0;
    QStringList names;

    static auto fields(auto& value) { return std::tie(value.id, value.names); }
};

struct TrayMenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint time = 0;

    static auto fields(auto& value) { return std::tie(value.id, value.name, value.data, value.time); }
};

/// The item's menu, which the desktop's panel draws. Main thread only.
class TrayMenu final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    static constexpr auto path = "/StatusNotifierItem/Menu";

    /// The parent is what is registered there.
    explicit TrayMenu(QObject* parent);

    std::function<void(StatusMenuAction)> onChoose;

    /// Tells only what is different.
    void setEntries(const std::vector<StatusMenuEntry>& entries);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parent, int depth, const QStringList& names, vespra::TrayMenuLayout& layout) const;
    QList<vespra::TrayMenuEntry> GetGroupProperties(const QList<int>& ids, const QStringList& names) const;
    QDBusVariant GetProperty(int id, const QString& name) const;
    void Event(int id, const QString& name, const QDBusVariant& data, uint time);
    QList<int> EventGroup(const QList<vespra::TrayMenuEvent>& events);
    bool AboutToShow(int) const { return false; }
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& unknown) const;

Q_SIGNALS:
    void ItemsPropertiesUpdated(
        const QList<vespra::TrayMenuEntry>& updated, const QList<vespra::TrayMenuRemoval>& removed) const;
    void LayoutUpdated(uint revision, int parent) const;

private:
    struct Row {
        int id;
        QVariantMap properties;
        std::optional<StatusMenuAction> action; // absent: a line
        bool operator==(const Row&) const = default;
    };
    static std::vector<Row> rowsFor(const std::vector<StatusMenuEntry>& entries);
    /// Null if there is none.
    const Row* row(int id) const;
    /// Absent if there is none.
    std::optional<QVariantMap> properties(int id) const;

    std::vector<Row> rows_;
    uint revision_ = 0;
};

} // namespace vespra
