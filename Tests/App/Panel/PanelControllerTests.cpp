#include "App/Panel/PanelController.h"

#include "Tests/Support/LaunchedApplication.h"

namespace vespra {

namespace {

    class ChosenAppearance final : public AppearanceMonitoring {
    public:
        void choose(const Appearance& appearance) { update(appearance); }
    };

    class FakeAnchor final : public PanelAnchor {
    public:
        std::optional<PanelHook> hook() const override { return place; }
        void setHighlighted(bool highlighted) override { isHighlighted = highlighted; }

        std::optional<PanelHook> place = PanelHook{{600, 0, 24, 28}, {0, 28, 1280, 772}};
        bool isHighlighted = false;
    };

    class FakeWindow final : public PanelWindow {
    public:
        bool canBePlaced() const override { return isPlaceable; }
        QSize contentSize(int maximumHeight) override { return {340, std::min(height, maximumHeight)}; }
        void orderIn(const std::optional<PanelPlace>& there) override
        {
            isOnScreen = true;
            content = there ? there->content : QRect{};
        }
        void place(const PanelPlace& place) override { content = place.content; }
        void orderOut() override { isOnScreen = false; }
        bool isInFront() const override { return true; }
        std::unique_ptr<OutsideClickMonitor> monitorOutsideClicks(std::function<void()> onClick) override
        {
            struct Monitor final : OutsideClickMonitor {
                explicit Monitor(FakeWindow& owner)
                    : window{owner}
                {
                }
                ~Monitor() override { --window.monitors; }
                FakeWindow& window;
            };
            click = std::move(onClick);
            ++monitors;
            return std::make_unique<Monitor>(*this);
        }

        bool isPlaceable = true, isOnScreen = false;
        int height = 400, monitors = 0;
        QRect content;
        std::function<void()> click;
    };

    class PanelControllerTest : public LaunchedApplication {
    protected:
        PanelControllerTest()
        {
            launch();
            panel.emplace(model(), window, presentation);
        }

        ChosenAppearance appearance;
        PanelPresentation presentation{laptop.time, appearance};
        FakeWindow window;
        std::shared_ptr<FakeAnchor> anchor = std::make_shared<FakeAnchor>();
        std::optional<PanelController> panel;
    };

} // namespace

TEST_F(PanelControllerTest, GoesInEveryWayWhenItsContentHasGone)
{
    const std::function<void()> ways[]
        = {[this] { panel->toggle(anchor); }, [this] { window.onCancel(); }, [this] { window.click(); }};
    for (const auto& hide : ways) {
        panel->toggle(anchor);
        EXPECT_TRUE(panel->isVisible() && window.isOnScreen && presentation.isShown() && anchor->isHighlighted);
        EXPECT_EQ(window.content, (QRect{442, 32, 340, 400}));
        hide();
        EXPECT_FALSE(panel->isVisible() || presentation.isShown() || anchor->isHighlighted || window.monitors > 0);
        laptop.advance(0.089s);
        EXPECT_TRUE(window.isOnScreen);
        laptop.advance(0.002s);
        EXPECT_FALSE(window.isOnScreen);
    }
    appearance.choose({.reducesMotion = true});
    panel->show(anchor);
    panel->hide();
    EXPECT_FALSE(window.isOnScreen);
}

TEST_F(PanelControllerTest, ComesBackWhileItGoesAndWatchesOnce)
{
    const auto other = std::make_shared<FakeAnchor>();
    panel->show(anchor);
    panel->hide();
    panel->show(anchor);
    panel->show(other);
    laptop.advance(1s);
    EXPECT_TRUE(window.isOnScreen);
    EXPECT_EQ(window.monitors, 1);
    EXPECT_FALSE(anchor->isHighlighted);
    EXPECT_TRUE(other->isHighlighted);
    panel.reset();
    window.click();
    EXPECT_EQ(window.monitors, 0);
}

TEST_F(PanelControllerTest, ShowsHowTheClosedLidStandsNow)
{
    laptop.platform.helper.service->onChange = nullptr; // a system that does not tell
    laptop.set({{"helper", "ready"}});
    EXPECT_FALSE(isReady(model().closedLid()->status()));
    panel->show(anchor);
    laptop.settle();
    EXPECT_TRUE(isReady(model().closedLid()->status()));
}

TEST_F(PanelControllerTest, StaysOnTheScreenWhenItsContentGrows)
{
    anchor->place = PanelHook{{600, 772, 24, 28}, {0, 0, 1280, 772}};
    panel->show(anchor);
    window.height = 2000;
    window.onContentResize();
    EXPECT_EQ(window.content, (QRect{442, 8, 340, 760}));
}

TEST_F(PanelControllerTest, IsAnOrdinaryWindowWithoutAPlace)
{
    for (const bool hasItem : {false, true}) {
        window.isPlaceable = !hasItem;
        if (!hasItem)
            anchor->place.reset();
        panel->show(anchor);
        EXPECT_TRUE(window.isOnScreen && panel->isOrdinaryWindow());
        EXPECT_EQ(window.monitors, 0);
        window.onContentResize();
        EXPECT_EQ(window.content, QRect{});
        panel->hide();
        anchor->place = PanelHook{};
    }
}

} // namespace vespra
