#pragma once

#include "App/MenuBar/linux/BusStructure.h"
#include "App/MenuBar/linux/TrayIcon.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>

#include <functional>
#include <optional>

namespace vespra {

/// What a pointer at rest on the item is shown.
struct TrayToolTip {
    QString iconName;
    TrayImages icon;
    QString title, text;

    static auto fields(auto& value) { return std::tie(value.iconName, value.icon, value.title, value.text); }
};

/// The item as the desktop's panel reads it. Signals only tell what has changed. Main thread only.
class StatusNotifierItem : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ none)
    Q_PROPERTY(vespra::TrayImages IconPixmap READ icon)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(vespra::TrayImages OverlayIconPixmap READ noIcon)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(vespra::TrayImages AttentionIconPixmap READ noIcon)
    Q_PROPERTY(QString AttentionMovieName READ none)
    Q_PROPERTY(vespra::TrayToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    static constexpr auto path = "/StatusNotifierItem";

    /// `menuPath` names the menu's object on the same connection. The parent is what is registered there.
    StatusNotifierItem(QObject* parent, QString id, QString menuPath);

    /// Where the click was: pixels of the screen, as the panel tells; some tell nonsense.
    std::function<void(QPoint)> onActivate;

    void setIcon(TrayImages icon);
    void setTitle(const QString& title);
    void setToolTip(const QString& text);
    /// Beside the icon; empty: none. Does nothing in an item without a label.
    virtual void setLabel(const QString&) { }

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return id_; }
    QString title() const { return title_; }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    TrayImages icon() const { return icon_; }
    TrayToolTip toolTip() const { return {.iconName = {}, .icon = {}, .title = id_, .text = toolTip_}; }
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const { return QDBusObjectPath{menuPath_}; }
    QString none() const { return {}; }
    TrayImages noIcon() const { return {}; }

public Q_SLOTS:
    void Activate(int x, int y);
    // Panels draw the menu themselves and call this only for items without one. The panel never opens from here.
    void ContextMenu(int, int) { }
    void SecondaryActivate(int, int) { }
    void Scroll(int, const QString&) { }

Q_SIGNALS:
    void NewIcon();
    void NewTitle();
    void NewToolTip();

private:
    QString id_, menuPath_;
    TrayImages icon_;
    QString title_, toolTip_;
};

/// The same with a text beside the icon. MATE's panel shows the text in the place of the icon, even an empty one, so an
/// item there must not so much as have the property.
class LabelledStatusNotifierItem final : public StatusNotifierItem {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)

public:
    using StatusNotifierItem::StatusNotifierItem;

    void setLabel(const QString& label) override;
    QString label() const { return label_; }
    /// As wide as the label gets, so that the panel's other items stand still.
    QString labelGuide() const { return QStringLiteral("0:00:00"); }

Q_SIGNALS:
    void XAyatanaNewLabel(const QString& label, const QString& guide);

private:
    QString label_;
};

} // namespace vespra
