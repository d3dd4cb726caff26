#include "App/MenuBar/StatusItemController.h"
#include "App/MenuBar/StatusItemDrawing.h"
#include "Tests/Support/LaunchedApplication.h"

namespace vespra {

namespace {

    /// Keeps what it is to show.
    class RecordingItem final : public StatusItem {
    public:
        Features features() const override { return offered; }
        void show(const StatusItemContent& content) override
        {
            shown = content;
            titles += content.title.value_or("-") + "|";
        }
        void popUpMenu() override { clicks += "menu "; }
        void setHighlighted(bool) override { }
        std::optional<QRect> buttonFrame() const override { return {}; }
        std::optional<QRect> visibleFrame() const override { return {}; }

        Features offered{.hasTitle = true, .hasToolTip = false, .menu = {StatusMenuAction::toggleSession}};
        StatusItemContent shown;
        std::string titles, clicks;
    };

    class StatusItemTest : public LaunchedApplication {
    protected:
        StatusItemTest()
        {
            launch();
            qputenv("LC_ALL", "C"); // before the user's format is made
        }
        void show()
        {
            controller.emplace(
                SurfaceContext{
                    model(), *laptop.platform.time.mainLoop, laptop.time, model().clock(), *laptop.platform.appearance},
                item,
                AppSurfaces::StatusItemActions{
                    [this] { item.clicks += "toggle "; }, [this] { item.clicks += "settings "; }});
        }
        /// Starts a session that ends after `length`.
        void start(Seconds length)
        {
            auto preferences = model().preferences();
            preferences.timerDuration = length;
            model().start(preferences);
            laptop.settle();
        }
        std::string titlesDuring(Seconds time)
        {
            item.titles.clear();
            for (Seconds passed{}; passed < time; passed += 500ms)
                laptop.advance(500ms);
            return item.titles;
        }

        RecordingItem item;
        std::optional<StatusItemController> controller;
    };

} // namespace

TEST(StatusDot, StandsOverTheNotchOfTheImage)
{
    EXPECT_EQ(statusDotOrigin({4, 5, 23, 12.7}, true, 22), QPointF(3.75, 4.5));
    EXPECT_EQ(statusDotOrigin({4, 6, 23, 12}, false, 22), QPointF(3.75, 3.5)) << "4 points above it, 6 below";
    EXPECT_FALSE(statusDotOrigin({4, 5, 0, 12}, true, 22));
    EXPECT_EQ(statusImage::notch.center(), statusImage::dotCenter);
}

TEST_F(StatusItemTest, CountsDownAtWholeSecondsWhileThatIsWanted)
{
    model().setShowsRemainingTimeInMenuBar(true);
    show();
    const auto idle = laptop.time.pendingTasks();
    start(1h);
    laptop.advance(800ms);
    EXPECT_EQ(*item.shown.title, " 1:00:00") << "3599.2 s";
    EXPECT_EQ(titlesDuring(2s), " 59:59| 59:58|");
    laptop.advance(3600s - 2.8s - 59.5s);
    EXPECT_EQ(*item.shown.title, " 1:00") << "59.5 s";
    EXPECT_EQ(laptop.time.pendingTasks(), idle + 1);
    model().setShowsRemainingTimeInMenuBar(false);
    laptop.settle();
    EXPECT_FALSE(item.shown.title);
    EXPECT_EQ(laptop.time.pendingTasks(), idle) << "at once, not at the next second";
}

TEST_F(StatusItemTest, TellsMinutesInWordsWithoutLookingEverySecond)
{
    item.offered = {.hasTitle = false, .hasToolTip = true, .menu = {}};
    model().setShowsRemainingTimeInMenuBar(true);
    show();
    EXPECT_EQ(item.shown.toolTip, "No session is running.");
    start(1h);
    EXPECT_EQ(item.shown.toolTip, "Session active, 1 hour left");
    EXPECT_EQ(titlesDuring(3min), "-|-|-|");
    EXPECT_EQ(item.shown.toolTip, "Session active, 58 minutes left");
    prefer(SessionMode::unlimited);
    coordinator().stop(end::StoppedByUser{});
    model().start();
    EXPECT_EQ(titlesDuring(10min), "-|") << "nothing changes";
}

TEST_F(StatusItemTest, CarriesOutWhatIsClicked)
{
    show();
    EXPECT_EQ(item.shown.accessibilityLabel + item.shown.menu[0].title, "VespraStart");
    item.onClick(StatusItem::Click::primary);
    item.onClick(StatusItem::Click::secondary);
    item.onChoose(StatusMenuAction::openSettings);
    model().showPanel = [this] { item.clicks += "panel "; };
    item.onChoose(StatusMenuAction::openPanel);
    EXPECT_EQ(item.clicks, "toggle menu settings panel ");
    item.onChoose(StatusMenuAction::toggleSession);
    laptop.settle();
    EXPECT_TRUE(item.shown.isActive);
    EXPECT_EQ(item.shown.accessibilityLabel + item.shown.menu[0].title, "Vespra, session activeStop");
}

} // namespace vespra
