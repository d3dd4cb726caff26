#include "Control/Scenario/ScenarioPlayer.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& path) { return textOf(path).value(); }

std::vector<fs::path> scenarios(const char* folder)
{
    std::vector<fs::path> paths;
    for (const auto& entry : fs::directory_iterator{fs::path{SCENARIOS} / folder})
        if (entry.path().extension() == ".json")
            paths.push_back(entry.path());
    std::ranges::sort(paths);
    return paths;
}

std::string testName(const testing::TestParamInfo<fs::path>& info)
{
    auto name = info.param.stem().string();
    std::ranges::replace(name, '-', '_');
    return name;
}

class Scenarios : public testing::TestWithParam<fs::path> { };

/// A scenario and, beside it, what it prints: a new case is two files.
TEST_P(Scenarios, PrintWhatStandsBesideThem)
{
    const auto scenario = parsedScenario(contents(GetParam()));
    ASSERT_TRUE(scenario) << scenario.error();
    std::string printed;
    play(*scenario, [&](std::string_view line) { printed.append(line).append("\n"); });
    EXPECT_EQ(printed, contents(fs::path{GetParam()}.replace_extension(".jsonl")));
}

INSTANTIATE_TEST_SUITE_P(Valid, Scenarios, testing::ValuesIn(scenarios("valid")), testName);

class MalformedScenarios : public testing::TestWithParam<fs::path> { };

TEST_P(MalformedScenarios, NameTheirFault)
{
    const auto scenario = parsedScenario(contents(GetParam()));
    ASSERT_FALSE(scenario);
    EXPECT_EQ(scenario.error() + "\n", contents(fs::path{GetParam()}.replace_extension(".error")));
}

INSTANTIATE_TEST_SUITE_P(Malformed, MalformedScenarios, testing::ValuesIn(scenarios("malformed")), testName);

} // namespace
