#include "Tests/Support/HookExamples.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

using namespace vespra;
namespace fs = std::filesystem;

namespace {

std::string outcome(const std::expected<std::string, HookInstaller::Failure>& result)
{
    if (result)
        return *result;
    return result.error() == HookInstaller::Failure::unreadable ? "unreadable\n" : "unexpectedStructure\n";
}

OrderedJSON usersPart(const HookInstaller& installer, const std::string& text)
{
    return OrderedJSON::parse(installer.uninstalling(text).value()).value_or(OrderedJSON::Object{});
}

/// "shared-group.codex.before" beside what installing into it and uninstalling from it give: ".installed",
/// ".uninstalled", or ".refused" with the failure of both.
TEST(HookInstaller, TurnsEachFileBeforeIntoTheFileAfter)
{
    int checked = 0;
    for (const auto& entry : fs::directory_iterator{VESPRA_HOOK_FILES}) {
        const auto& before = entry.path();
        if (before.extension() != ".before")
            continue;
        SCOPED_TRACE(before.filename());
        const auto agent = fromRawValue<AgentKind>(before.stem().extension().string().substr(1));
        ASSERT_TRUE(agent);
        const auto installer = exampleInstaller(*agent);
        const auto text = textOf(before).value();
        const auto expect = [&](const char* extension, const std::string& result) {
            if (const auto after = textOf(fs::path{before}.replace_extension(extension))) {
                EXPECT_EQ(result, *after);
                ++checked;
            }
        };
        const auto installed = installer.installing(text);
        expect(".installed", outcome(installed));
        expect(".uninstalled", outcome(installer.uninstalling(text)));
        expect(".refused", outcome(installed));
        if (!installed)
            continue;
        EXPECT_EQ(installer.state(*installed), HookInstaller::State::installed);
        EXPECT_EQ(installer.installing(*installed), installed);
        // Nothing of the user's is lost on the way there and back, but for an event without any group.
        if (!text.contains("\"Stop\":[]")) {
            EXPECT_EQ(usersPart(installer, *installed), usersPart(installer, text));
        }
    }
    EXPECT_GT(checked, 50);
}

TEST(HookInstaller, CountsTheEventsThatHaveOurs)
{
    using enum HookInstaller::State;
    const auto installer = exampleInstaller(AgentKind::claudeCode);
    const std::string ours = R"([{"hooks":[{"command":"vespra-agent"}]}])";
    const auto with = [&](std::span<const std::string> events) {
        std::string text;
        for (const auto& event : events)
            text += (text.empty() ? "\"" : ",\"") + event + "\":" + ours;
        return "{\"hooks\":{" + text + "}}";
    };
    const std::span events{installer.events};
    EXPECT_EQ(installer.state(with(events)), installed);
    EXPECT_EQ(installer.state(with(events.first(5))), partial);
    EXPECT_EQ(installer.state(with(events.first(1))), partial);
    for (const auto& text : std::vector<std::optional<std::string>>{
             {}, "", "{", "[]", "{}", R"({"hooks":[]})", R"({"hooks":{"PreToolUse":)" + ours + "}}"})
        EXPECT_EQ(installer.state(text), notInstalled) << text.value_or("absent");
}

} // namespace
