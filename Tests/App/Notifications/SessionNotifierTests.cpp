#include "App/Notifications/SessionNotifier.h"
#include "App/System/UserNotificationCenter.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "Core/Lifetime.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>

namespace vespra {

namespace {

    using testing::ElementsAre;
    using testing::IsEmpty;

    constexpr Instant sixPM{18h};
    const std::vector<std::string> all{
        "session.endingSoon", "session.heatWarning", "session.ended", "agents.finished", "updates.available"};

    /// Notifications in memory; the test is the user.
    class FakeNotificationCenter final : public UserNotificationCenter {
    public:
        void setCategories(std::vector<NotificationCategory>) override { }
        void requestAuthorization() override { ++questions; }
        void post(const UserNotification& notification) override
        {
            EXPECT_EQ(questions, 1) << "Not asked once before " << notification.identifier;
            removeDelivered({notification.identifier});
            shown.push_back(notification);
        }
        void removeDelivered(const std::vector<std::string>& identifiers) override
        {
            std::erase_if(shown,
                [&](const auto& each) { return std::ranges::find(identifiers, each.identifier) != identifiers.end(); });
        }
        void respond(const NotificationResponse& response) const { notify(onResponse, response); }

        /// In the order in which they came.
        std::vector<UserNotification> shown;
        /// How often the user was asked.
        int questions = 0;
    };

    class Notifier : public testing::Test {
    protected:
        std::vector<std::string> identifiers() const
        {
            std::vector<std::string> identifiers;
            identifiers.reserve(center.shown.size());
            for (const auto& each : center.shown)
                identifiers.push_back(each.identifier);
            return identifiers;
        }
        void show(const std::vector<std::string>& notifications)
        {
            center.shown.clear();
            for (const auto& identifier : notifications)
                center.shown.push_back({.identifier = identifier, .title = "old", .body = {}});
        }

        FakeNotificationCenter center;
        SessionNotifier notifier{center};
    };

} // namespace

TEST_F(Notifier, EveryNotificationSaysWhatIsAgreed)
{
    const std::string soon = "session.endingSoon.category", forced = "agents.forcedAction.category";
    struct Row {
        std::function<void()> post;
        UserNotification expected;
    };
    for (const auto& [post, expected] : std::vector<Row>{
             {[&] { notifier.postEndingSoon(sixPM); },
                 {"session.endingSoon", "5 minutes left", "The session ends at " + timeText(sixPM) + ".", soon}},
             {[&] { notifier.postHeatWarning(); },
                 {"session.heatWarning",
                     localized("Your Mac is running hot"),
                     "The session continues. Make sure it has room to breathe."}},
             {[&] { notifier.postEnded({end::Overheating{}, sixPM}); },
                 {"session.ended",
                     localized("Session ended — Mac too hot"),
                     localized("Closed-lid mode is off so the Mac can cool down.")}},
             {[&] { notifier.postAgentsFinished("Done", "Sleep in 1 minute.", true); },
                 {"agents.finished", "Done", "Sleep in 1 minute.", forced}},
             {[&] { notifier.postAgentsFinished("Done", "Good night.", false); },
                 {"agents.finished", "Done", "Good night."}},
             {[&] { notifier.postUpdateAvailable("2.10"); },
                 {"updates.available",
                     "Vespra 2.10 is available",
                     "Click to see what's new and install it.",
                     "",
                     "Show"}},
         }) {
        SCOPED_TRACE(expected.title);
        center.shown.clear();
        post();
        EXPECT_THAT(center.shown, ElementsAre(expected));
    }
}

TEST_F(Notifier, AnEndTakesThePlaceOfAllThatWasSaidOfTheSession)
{
    const std::string update = "updates.available";
    show(all);
    notifier.postEnded({end::TimeElapsed{}, sixPM});
    EXPECT_THAT(identifiers(), ElementsAre(update, "session.ended"));
    show(all);
    notifier.postAgentsFinished("Done", "", false);
    EXPECT_THAT(identifiers(), ElementsAre(update, "agents.finished"));
    show(all);
    notifier.removeUpdateAvailable();
    notifier.removeEndingSoon();
    EXPECT_THAT(identifiers(), ElementsAre("session.heatWarning", "session.ended", "agents.finished"));
    notifier.postHeatWarning();
    EXPECT_THAT(identifiers(), ElementsAre("session.ended", "agents.finished", "session.heatWarning"));
}

TEST(NotifierResponses, ReachExactlyTheOneTheyAreFor)
{
    struct Row {
        NotificationResponse response;
        std::vector<std::string> told;
    };
    FakeNotificationCenter center;
    std::optional<SessionNotifier> notifier{std::in_place, center};
    std::vector<std::string> told;
    center.respond({"session.endingSoon", "session.extend"}); // nobody listens yet
    notifier->onExtend = [&] { told.emplace_back("extend"); };
    notifier->onCancelForcedAction = [&] { told.emplace_back("cancel"); };
    notifier->onOpenUpdate = [&] { told.emplace_back("open update"); };
    for (const auto& row : std::vector<Row>{
             {{"session.endingSoon", "session.extend"}, {"extend"}},
             {{"agents.finished", "agents.cancelForcedAction"}, {"cancel"}},
             {{"updates.available", ""}, {"open update"}},
             {{"session.endingSoon", ""}, {}},
             {{"session.heatWarning", "unknown"}, {}},
         }) {
        SCOPED_TRACE(row.response.notification + " " + row.response.action);
        center.respond(row.response);
        EXPECT_EQ(std::exchange(told, {}), row.told);
    }
    notifier.reset();
    center.respond({"session.endingSoon", "session.extend"});
    EXPECT_THAT(told, IsEmpty());
}

} // namespace vespra
