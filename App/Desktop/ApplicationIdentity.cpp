#include "App/Desktop/ApplicationIdentity.h"

#include "App/DesignSystem/Icon.h"
#include "HelperProtocol/Brand.h"

#include <QAccessibleObject>
#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QWidget>

namespace vespra {

namespace {

    QIcon emblem()
    {
        QIcon icon;
        for (const int size : {16, 24, 32, 48, 64, 128}) {
            QPixmap picture{size, size};
            picture.fill(Qt::transparent);
            QPainter painter{&picture};
            drawEmblem(painter, picture.rect());
            icon.addPixmap(picture);
        }
        return icon;
    }

    /// Qt leaves popups out of what it tells of an application's windows: a screen reader would not find the panel.
    class AccessibleApplication final : public QAccessibleObject {
    public:
        using QAccessibleObject::QAccessibleObject;

        QAccessibleInterface* parent() const override { return nullptr; }
        int childCount() const override { return static_cast<int>(windows().size()); }
        QAccessibleInterface* child(int index) const override
        {
            return QAccessible::queryAccessibleInterface(windows().value(index));
        }
        int indexOfChild(const QAccessibleInterface* child) const override
        {
            return static_cast<int>(windows().indexOf(qobject_cast<QWidget*>(child->object())));
        }
        QAccessibleInterface* focusChild() const override
        {
            return QAccessible::queryAccessibleInterface(QApplication::activeWindow());
        }
        QAccessible::Role role() const override { return QAccessible::Application; }
        QAccessible::State state() const override { return {}; }
        QString text(QAccessible::Text kind) const override
        {
            if (kind == QAccessible::Name)
                return QGuiApplication::applicationName();
            return kind == QAccessible::Description ? QCoreApplication::applicationFilePath() : QString{};
        }

    private:
        static QWidgetList windows()
        {
            QWidgetList shown;
            for (auto* each : QApplication::topLevelWidgets())
                if (each->windowHandle() && each->windowType() != Qt::Desktop)
                    shown.append(each);
            return shown;
        }
    };

    QAccessibleInterface* accessibleApplication(const QString& className, QObject* object)
    {
        const bool isApplication = object == qApp && className == QLatin1String("QApplication");
        return isApplication ? new AccessibleApplication{object} : nullptr;
    }

} // namespace

void setApplicationIdentity()
{
    // Its windows are named by what they show: desktops add whose they are.
    QGuiApplication::setApplicationDisplayName(QString::fromStdString(Brand::appName()));
    QGuiApplication::setDesktopFileName(QString::fromStdString(Brand::appBundleID()));
    QApplication::setWindowIcon(emblem());
    QAccessible::installFactory(accessibleApplication);
}

} // namespace vespra
