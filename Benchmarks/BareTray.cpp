// What the application with its item is measured against: a Qt Widgets program with an item in the tray and a menu.

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argc, char** argv)
{
    const QApplication application{argc, argv};
    QPixmap picture{22, 22};
    picture.fill(Qt::black);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &application, &QApplication::quit);
    QSystemTrayIcon item{QIcon{picture}};
    item.setContextMenu(&menu);
    item.show();
    return QApplication::exec();
}
