#include "App/Panel/EditShortcuts.h"
#include "App/Panel/PanelFrame.h"
#include "Core/Scheduling/ManualMainLoop.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace vespra {

namespace {

    class PanelFrameTest : public testing::Test {
    protected:
        void press(QPointF place)
        {
            QMouseEvent event{QEvent::MouseButtonPress, place, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier};
            QCoreApplication::sendEvent(&frame, &event);
        }
        QWidget* makeContent()
        {
            auto* widget = new QWidget;
            auto* column = new QVBoxLayout{widget};
            column->setContentsMargins(10, 10, 10, 10);
            column->addWidget(field = new QLineEdit);
            field->setFixedHeight(80);
            return widget;
        }

        const bool hasPlatform_ = qputenv("QT_QPA_PLATFORM", "offscreen");
        int argumentCount_ = 1;
        char program_[6] = "tests";
        char* arguments_[2] = {program_, nullptr};
        QApplication application{argumentCount_, arguments_};
        ManualMainLoop mainLoop;
        Look look{{}, QApplication::font()};
        QLineEdit* field = nullptr;
        PanelFrame frame{{mainLoop, look}, [this] { return makeContent(); }};
    };

} // namespace

TEST_F(PanelFrameTest, TellsOfAnotherHeightAndOfClicksBesideTheContent)
{
    int resized = 0, outside = 0;
    frame.onContentResize = [&] { ++resized; };
    frame.onPressOutside = [&] { ++outside; };
    const auto size = frame.contentSize(500);
    EXPECT_EQ(size, QSize(look.units(340), 100));
    frame.setGeometry(frame.frameAround({{100, 100}, size}));
    frame.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(resized, 0);
    field->setFixedHeight(120);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(resized, 1);
    for (const auto place : {QPointF{39, 60}, QPointF{60, 39}, QPointF{-500, 60}})
        press(place);
    press({40, 40});
    EXPECT_EQ(outside, 3);
}

TEST_F(PanelFrameTest, ScrollsWhatCannotBeLower)
{
    const auto size = frame.contentSize(60);
    EXPECT_EQ(size.height(), 60);
    frame.setGeometry(frame.frameAround({{100, 100}, size}));
    frame.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(field->parentWidget()->height(), 100);
    field->setFocus();
    EXPECT_TRUE(frame.contentRect().contains(QRect{field->mapTo(&frame, QPoint{}), QSize{1, 1}}));
}

TEST_F(PanelFrameTest, FadesOutBeforeTheEdgeOfItsWindow)
{
    const auto size = frame.contentSize(500);
    frame.resize(frame.frameAround({{}, size}).size());
    const auto picture = frame.grab().toImage();
    const int middle = picture.width() / 2, end = picture.height() - 1;
    EXPECT_EQ(qAlpha(picture.pixel(middle, end)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(0, end - 40)), 0);
    EXPECT_GT(qAlpha(picture.pixel(middle, end - 30)), 20);
    EXPECT_EQ(picture.pixelColor(middle, 45), look.tokens().panel);
}

TEST_F(PanelFrameTest, EditsWithTheUsualKeys)
{
    frame.build();
    field->setText("a text");
    const auto edit = [&](char32_t character, bool hasShift) {
        const auto command = editShortcuts::command(character, hasShift);
        return command && editShortcuts::carryOut(*command, field);
    };
    EXPECT_TRUE(edit(U'a', false));
    EXPECT_TRUE(edit(U'x', false));
    EXPECT_EQ(field->text(), "");
    EXPECT_TRUE(edit(U'v', false));
    EXPECT_TRUE(edit(U'v', false));
    EXPECT_EQ(field->text(), "a texta text");
    EXPECT_TRUE(edit(U'z', false));
    EXPECT_EQ(field->text(), "a text");
    EXPECT_TRUE(edit(U'z', true));
    EXPECT_EQ(field->text(), "a texta text");
    EXPECT_FALSE(edit(U'a', true) || edit(U'q', false));
}

} // namespace vespra
