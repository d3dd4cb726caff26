#include "App/Desktop/ApplicationIdentity.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QApplication>
#include <QWidget>

namespace vespra {

TEST(ApplicationIdentity, ListsPopupsAmongTheWindows)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argumentCount = 1;
    char program[] = "tests";
    char* arguments[] = {program, nullptr};
    const QApplication application{argumentCount, arguments};
    setApplicationIdentity();
    const auto* accessible = QAccessible::queryAccessibleInterface(qApp);
    EXPECT_EQ(accessible->childCount(), 0);
    QWidget popup{nullptr, Qt::Popup};
    popup.show();
    ASSERT_EQ(accessible->childCount(), 1);
    EXPECT_EQ(accessible->child(0)->object(), &popup);
    EXPECT_EQ(accessible->indexOfChild(accessible->child(0)), 0);
}

} // namespace vespra
