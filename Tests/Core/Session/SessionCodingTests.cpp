#include "Core/ClosedLid/SleepOverrideLedger.h"
#include "Core/Session/SessionPreferences.h"
#include "Core/Session/SessionSettings.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace vespra;

namespace {

template <class Read> auto read(const char* text, Read reader)
{
    const auto json = JSON::parse(text);
    return decoded(JSONSource{json}, reader);
}

TEST(SessionPlanJSON, RoundTripsInItsPersistedForm)
{
    for (const auto& [plan, json] : std::vector<std::pair<SessionPlan, const char*>>{
             {plan::Timer{Seconds{3600.5}}, R"({"timer":{"duration":3600.5}})"},
             {plan::Until{{18, 30}}, R"({"until":{"_0":{"hour":18,"minute":30}}})"},
             {plan::Unlimited{}, R"({"unlimited":{}})"},
             {plan::Agent{12h}, R"({"agent":{"safetyCap":43200}})"},
             {plan::Agent{}, R"({"agent":{}})"},
         }) {
        EXPECT_EQ(toJSON(plan).dump(), json);
        EXPECT_EQ(read(json, readSessionPlan).value(), plan);
    }
    const SessionPlan clamped = plan::Until{{23, 0}};
    EXPECT_EQ(read(R"({"until":{"_0":{"hour":30,"minute":-5}}})", readSessionPlan).value(), clamped);
}

// What is missing or malformed in plans and settings is in Tests/Scenarios.
TEST(SessionSettingsJSON, RoundTripsExceptThatNoCapReadsBackAsTheDefault)
{
    SessionSettings settings;
    settings.energy = {false, false, 33, Seconds{90.5}};
    settings.closedLid.continuesOnBattery = true;
    settings.agents = {Seconds{-5}, false, AgentEndAction::sleepNow};
    settings.agentSafetyCap = 1h;
    EXPECT_EQ(decoded(JSONSource{toJSON(settings)}, readSessionSettings).value(), settings);

    settings.agentSafetyCap.reset();
    EXPECT_FALSE(toJSON(settings).contains("agentSafetyCap"));
    EXPECT_EQ(read(R"({"agentSafetyCap":"x"})", readSessionSettings).error().description(),
        "agentSafetyCap: expected a number");
}

TEST(SessionPreferencesJSON, NeedsEveryKeyAndPlansFromItself)
{
    SessionPreferences preferences{
        .mode = SessionMode::timer, .timerDuration = 89s, .untilTime = {7, 45}, .options = {true, false}};
    const auto json = toJSON(preferences);
    EXPECT_EQ(sessionPreferences(json).value(), preferences);
    for (const auto& [key, _] : json.items()) {
        auto incomplete = json;
        incomplete.erase(key);
        EXPECT_FALSE(sessionPreferences(incomplete)) << key;
    }

    EXPECT_EQ(preferences.plan(5s), SessionPlan{plan::Timer{60s}});
    preferences.mode = SessionMode::until;
    EXPECT_EQ(preferences.plan(5s), (SessionPlan{plan::Until{{7, 45}}}));
    preferences.mode = SessionMode::agent;
    EXPECT_EQ(preferences.plan(5s), SessionPlan{plan::Agent{5s}});
    EXPECT_EQ(preferences.plan({}), SessionPlan{plan::Agent{}});
}

} // namespace
