#include "App/Onboarding/OnboardingWindowController.h"
#include "Tests/Support/ShownSurfaces.h"

#include <gmock/gmock.h>

namespace vespra {

namespace {

    class OnboardingTest : public ShownSurfaces {
    protected:
        void setComponent(const char* mode)
        {
            laptop.set({{"helper", mode}});
            model().closedLid()->refreshStatus();
            laptop.settle();
        }
        /// What the step's buttons say, and its status line before them.
        std::vector<std::string> offers(OnboardingStep step)
        {
            const auto facts = onboardingFacts(model(), step);
            std::vector<std::string> all{facts.status ? facts.status->text : ""};
            for (const auto action : facts.actions)
                all.push_back(title(action));
            return all;
        }

        OnboardingWindowController controller{context(), theme};
    };

    using Texts = std::vector<std::string>;

} // namespace

TEST_F(OnboardingTest, OffersWhatTheComponentNeeds)
{
    struct Row {
        const char* mode;
        Texts offers;
    };
    for (const auto& row : std::vector<Row>{
             {"notInstalled", {"", "Set Up…", "Later"}},
             {"awaitingApproval", {"Waiting for your approval.", "Ask for Approval", "Done"}},
             {"failed", {"", "Done"}},
             {"noBuiltInDisplay", {"", "Done"}},
             {"ready", {"Component installed", "Done"}},
         }) {
        setComponent(row.mode);
        EXPECT_EQ(offers(OnboardingStep::closedLid), row.offers) << row.mode;
    }
    EXPECT_EQ(offers(OnboardingStep::launchAtLogin), (Texts{"", "Open at Login", "Not Now"}));
    model().loginItem().setEnabled(true);
    EXPECT_EQ(offers(OnboardingStep::launchAtLogin), (Texts{"Opens at login", "Continue"}));
}

TEST_F(OnboardingTest, GoesThroughBothStepsAndFinishes)
{
    controller.show();
    settle();
    press(controller.window(), "Open at Login");
    EXPECT_TRUE(model().loginItem().isEnabled());
    setComponent("awaitingApproval");
    settle();
    EXPECT_TRUE(button(controller.window(), "Ask for Approval"));
    laptop.set({{"helper", "ready"}});
    laptop.advance(3s);
    settle();
    EXPECT_FALSE(button(controller.window(), "Ask for Approval")) << "the text follows the component";
    EXPECT_EQ(defaults.boolean("didFinishOnboarding"), std::nullopt);
    press(controller.window(), "Done");
    EXPECT_EQ(defaults.boolean("didFinishOnboarding"), true);
    EXPECT_FALSE(controller.window());
}

TEST_F(OnboardingTest, ClosingItEarlyFinishesIt)
{
    controller.show();
    settle();
    controller.window()->close();
    settle();
    EXPECT_EQ(defaults.boolean("didFinishOnboarding"), true);
    EXPECT_FALSE(controller.window());
    EXPECT_FALSE(model().loginItem().isEnabled());
}

} // namespace vespra
