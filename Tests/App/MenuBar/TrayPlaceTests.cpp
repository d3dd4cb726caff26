#include "App/MenuBar/linux/TrayPlace.h"

#include <gtest/gtest.h>

namespace vespra {

namespace {

    const TrayScreen left{.geometry = {0, 0, 1280, 800}, .available = {0, 28, 1280, 740}};
    /// Its pixels begin where the points do, and go twice as far.
    const TrayScreen right{.geometry = {1280, 0, 1000, 700}, .available = {1310, 0, 930, 700}, .scale = 2};

} // namespace

TEST(TrayPlace, IsThePointersElseThePanelsUnlessThatIsNonsense)
{
    using Place = std::optional<QPoint>;
    for (const auto& [told, pointer, expected] : std::vector<std::tuple<QPoint, Place, Place>>{
             {{700, 10}, QPoint{900, 12}, QPoint{900, 12}},
             {{700, 10}, {}, QPoint{700, 10}},
             {{1480, 200}, {}, QPoint{1380, 100}},
             {{0, 28}, {}, {}},
             {{0, 790}, {}, QPoint{0, 790}}, // a panel at the bottom
             {{5000, 10}, {}, {}},
         })
        EXPECT_EQ(clickedPlace(told, pointer, {left, right}), expected) << told.x() << "," << told.y();
}

TEST(TrayPlace, LiesInThePanelOfItsScreen)
{
    EXPECT_EQ(itemFrame({900, 3}, left), QRect(886, 0, 28, 28));
    EXPECT_EQ(itemFrame({900, 790}, left), QRect(884, 768, 32, 32));
    EXPECT_EQ(itemFrame({1290, 300}, right), QRect(1280, 285, 30, 30));
    const TrayScreen bare{.geometry = {0, 0, 1280, 800}, .available = {0, 0, 1280, 800}};
    EXPECT_EQ(itemFrame({900, 40}, bare), QRect(887, 27, 28, 28));
    EXPECT_EQ(itemFrame({1279, 0}, bare), QRect(1252, 0, 28, 28));
    EXPECT_EQ(itemFrame({0, 799}, bare), QRect(0, 772, 28, 28));
}

} // namespace vespra
