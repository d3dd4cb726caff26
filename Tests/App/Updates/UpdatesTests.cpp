#include "Tests/Support/LaunchedApplication.h"
#include "Tests/Support/MockSurfaces.h"

namespace vespra {

namespace {

    using UpdatesTest = LaunchedApplication;

} // namespace

TEST_F(UpdatesTest, AVersionThatNobodyAskedForIsToldOfOnce)
{
    testing::NiceMock<MockSurfaces> surfaces;
    launch(&surfaces);
    EXPECT_EQ(model().updates().lastCheck(), std::nullopt);
    laptop.set({{"update", "2.0"}});
    ASSERT_EQ(laptop.shown(), "updates.available");
    EXPECT_EQ(laptop.machine().notifications().front().title, "Vespra 2.0 is available");
    EXPECT_EQ(model().updates().lastCheck(), laptop.time.now());

    laptop.advance(1h);
    EXPECT_CALL(surfaces, activate);
    EXPECT_CALL(surfaces, showSettings(std::optional{SettingsTab::about}));
    laptop.set({{"press", "updates.available"}});
    EXPECT_EQ(laptop.shown(), "") << "the user sees it now";
    EXPECT_EQ(model().updates().state(), (UpdateState{update::Available{"2.0", ""}}));
    EXPECT_EQ(model().updates().lastCheck(), laptop.time.now());

    model().updates().setAutomaticallyChecks(false);
    laptop.set({{"update", "3.0"}});
    EXPECT_EQ(laptop.shown(), "");
    laptop.advance(1h);
    model().updates().checkForUpdates();
    EXPECT_EQ(laptop.shown(), "") << "it stands in the updater's window";
    EXPECT_EQ(model().updates().lastCheck(), laptop.time.now());
}

TEST_F(UpdatesTest, WhereNewVersionsComeByOtherMeansNothingHappens)
{
    laptop.platform.updater.reset();
    launch();
    EXPECT_FALSE(model().updates().isAvailable());
    model().updates().setAutomaticallyChecks(true);
    model().updates().checkForUpdates();
    EXPECT_FALSE(model().updates().automaticallyChecks());
}

} // namespace vespra
