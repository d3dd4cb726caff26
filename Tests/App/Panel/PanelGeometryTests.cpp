#include "App/Panel/PanelGeometry.h"

#include <gtest/gtest.h>

namespace vespra {

TEST(PanelGeometry, HangsFromTheItemAndStaysOnTheScreen)
{
    const QRect barAbove{0, 28, 1280, 772}, barBelow{0, 0, 1280, 772}, none{0, 0, 1280, 800};
    const QRect barLeft{48, 0, 1232, 800}, barRight{0, 0, 1232, 800};
    struct Row {
        const char* what;
        PanelHook hook;
        PanelPlace place;
        int maximumHeight;
    };
    for (const auto& row : std::vector<Row>{
             {"in the middle", {{600, 0, 24, 28}, barAbove}, {{442, 32, 340, 400}, ScreenEdge::top}, 760},
             {"as far right as it fits", {{1090, 0, 24, 28}, barAbove}, {{932, 32, 340, 400}, ScreenEdge::top}, 760},
             {"too far right", {{1256, 0, 24, 28}, barAbove}, {{932, 32, 340, 400}, ScreenEdge::top}, 760},
             {"too far left", {{0, 0, 24, 28}, barAbove}, {{8, 32, 340, 400}, ScreenEdge::top}, 760},
             {"a bar over windows", {{600, 2, 24, 40}, none}, {{442, 46, 340, 400}, ScreenEdge::top}, 746},
             {"a bar below", {{600, 776, 24, 20}, barBelow}, {{442, 368, 340, 400}, ScreenEdge::bottom}, 760},
             {"at its end", {{1264, 772, 16, 28}, barBelow}, {{932, 368, 340, 400}, ScreenEdge::bottom}, 760},
             {"a bar at the left", {{0, 100, 48, 24}, barLeft}, {{52, 100, 340, 400}, ScreenEdge::left}, 784},
             {"at its end", {{0, 780, 48, 20}, barLeft}, {{52, 392, 340, 400}, ScreenEdge::left}, 784},
             {"a bar at the right", {{1232, 0, 48, 24}, barRight}, {{888, 8, 340, 400}, ScreenEdge::right}, 784},
             {"on another screen",
                 {{-700, -1080, 24, 28}, {-1280, -1052, 1280, 772}},
                 {{-858, -1048, 340, 400}, ScreenEdge::top},
                 760},
             {"over a bar at the right",
                 {{1390, 0, 36, 24}, {0, 24, 1370, 876}},
                 {{1022, 28, 340, 400}, ScreenEdge::top},
                 864},
             {"a narrow screen", {{300, 0, 24, 28}, {0, 28, 320, 772}}, {{8, 32, 340, 400}, ScreenEdge::top}, 760},
         }) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(panelGeometry::placed(row.hook, {340, 400}), row.place);
        EXPECT_EQ(panelGeometry::maximumHeight(row.hook), row.maximumHeight);
    }
    EXPECT_EQ(panelGeometry::usualCorner(none, barAbove).item, (QRect{1279, 0, 1, 1}));
    EXPECT_EQ(panelGeometry::usualCorner(none, barBelow).item, (QRect{1279, 799, 1, 1}));
}

} // namespace vespra
