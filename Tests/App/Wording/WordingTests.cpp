#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/SessionWording.h"

#include <gmock/gmock.h>

#include <QByteArray>

#include <set>

namespace vespra {

namespace {

    /// Every case of a variant, with zeros for payloads.
    template <class Variant, std::size_t... index> std::vector<Variant> cases(std::index_sequence<index...>)
    {
        return {Variant{std::in_place_index<index>}...};
    }
    template <class Variant> std::vector<Variant> allCases()
    {
        return cases<Variant>(std::make_index_sequence<std::variant_size_v<Variant>>{});
    }
    template <class Enum> std::vector<Enum> allValues()
    {
        std::vector<Enum> values;
        for (const auto& [value, _] : rawValues<Enum>)
            values.push_back(value);
        return values;
    }

    /// Fails unless each of `values` has a text of its own without gaps.
    template <class Values> void expectTexts(const Values& values, auto text)
    {
        std::set<std::string> texts;
        for (const auto& value : values) {
            const std::string said{text(value)};
            EXPECT_TRUE(texts.insert(said).second) << "twice: " << said;
            EXPECT_THAT(said, testing::AllOf(testing::Not(testing::IsEmpty()), testing::Not(testing::HasSubstr("%1"))));
        }
    }

    TEST(Wording, TellsEveryCaseFromTheOthers)
    {
        expectTexts(allCases<EndReason>(), [](const EndReason& reason) { return shortDescription(reason); });
        expectTexts(allCases<StartRefusal>(), [](const StartRefusal& refusal) { return message(refusal); });
        expectTexts(allCases<ActiveGuardrail>(), [](const auto& guardrail) { return shortDescription(guardrail); });
        expectTexts(allValues<SessionMode>(), [](SessionMode mode) { return title(mode); });
        expectTexts(allValues<AgentEndAction>(), [](AgentEndAction action) { return explanation(action); });
        expectTexts(allValues<AgentEndAction>(), [](AgentEndAction action) { return notificationBody(action); });

        auto statuses = allCases<ClosedLidStatus>();
        std::erase_if(statuses, [](const auto& status) { return status.index() < 2; }); // the two with payloads
        for (const auto reason : allValues<ClosedLidUnsupportedReason>())
            statuses.emplace_back(closedLid::Unsupported{reason});
        for (const auto& blocker : allCases<ClosedLidBlocker>())
            statuses.emplace_back(closedLid::Blocked{blocker});
        expectTexts(statuses, [](const ClosedLidStatus& status) { return message(status); });
    }

    TEST(Wording, TitlesAnEndByItsReasonUnlessTheUserBroughtItAbout)
    {
        for (const auto& reason : allCases<EndReason>()) {
            SCOPED_TRACE(caseName(reason));
            const auto title = notificationTitle(reason);
            EXPECT_EQ(title == "Session ended", !traits(reason).notifies);
            EXPECT_TRUE(title == "Session ended" || title.starts_with("Session ended \u2014 ")) << title;
            // A check mark where nothing stands in the way of the next session.
            EXPECT_EQ(symbol(reason) == "checkmark.circle.fill", !traits(reason).isGuardrail);
        }
    }

    TEST(Wording, IsExact)
    {
        qputenv("LC_ALL", "C"); // before the user's format is made
        for (const auto& [said, expected] : std::vector<std::pair<std::string, const char*>>{
                 {shortDescription(end::LowBattery{5}), "Battery at 5%"},
                 {notificationTitle(end::LowBattery{5}), "Session ended \u2014 battery at 5%"},
                 {std::string{symbol(end::LowBattery{5})}, "battery.25percent"},
                 {std::string{symbol(end::SafetyCapReached{})}, "clock.badge.exclamationmark"},
                 {message(refusal::BatteryTooLow{20}), "Battery at 20%, too low to start."},
                 {message(closedLid::Blocked{blocker::BatteryTooLow{9}}), "Battery too low (9%)"},
                 {shortDescription(guardrail::LowBattery{20}), "Stops at 20% battery"},
                 {shortDescription(guardrail::BatteryTimeLimit{5400s}), "1h 30m max on battery"},
                 {shortDescription(guardrail::ClosedLidLimit{4h}), "4h max with lid closed"},
                 {shortDescription(guardrail::BatteryTimeLimit{-1s}), " max on battery"},
             })
            EXPECT_EQ(said, expected);
    }

} // namespace

} // namespace vespra
