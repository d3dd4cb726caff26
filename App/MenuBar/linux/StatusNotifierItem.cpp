#include "App/MenuBar/linux/StatusNotifierItem.h"

#include "Core/Lifetime.h"

#include <QDBusMetaType>

namespace vespra {

StatusNotifierItem::StatusNotifierItem(QObject* parent, QString id, QString menuPath)
    : QDBusAbstractAdaptor{parent}
    , id_{std::move(id)}
    , menuPath_{std::move(menuPath)}
{
    qDBusRegisterMetaType<TrayImage>();
    qDBusRegisterMetaType<TrayImages>();
    qDBusRegisterMetaType<TrayToolTip>();
}

void StatusNotifierItem::setIcon(TrayImages icon)
{
    icon_ = std::move(icon);
    Q_EMIT NewIcon();
}

void StatusNotifierItem::setTitle(const QString& title)
{
    if (std::exchange(title_, title) != title)
        Q_EMIT NewTitle();
}

void StatusNotifierItem::setToolTip(const QString& text)
{
    if (std::exchange(toolTip_, text) != text)
        Q_EMIT NewToolTip();
}

void LabelledStatusNotifierItem::setLabel(const QString& label)
{
    if (std::exchange(label_, label) != label)
        Q_EMIT XAyatanaNewLabel(label_, labelGuide());
}

void StatusNotifierItem::Activate(int x, int y) { notify(onActivate, QPoint{x, y}); }

} // namespace vespra
