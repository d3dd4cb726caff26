#include "Tests/Support/HookExamples.h"
#include "Tests/Support/TextFiles.h"

#include <gtest/gtest.h>

#include <random>

using namespace vespra;
namespace fs = std::filesystem;

namespace {

std::string outcome(const std::expected<std::string, HookInstaller::Failure>& result)
{
    if (result)
        return *result;
    return result.error() == HookInstaller::Failure::unreadable ? "unreadable\n" : "unexpectedStructure\n";
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

/// Documents such as agents and users write, and such as nobody would.
class Documents {
public:
    explicit Documents(unsigned seed)
        : random_{seed}
    {
    }

    /// A settings file without hooks of ours, empty hooks or empty groups.
    OrderedJSON settings()
    {
        auto root = object(3);
        if (below(4) > 0) {
            OrderedJSON::Object events;
            for (auto count = below(5) + 1; count > 0; --count)
                events.emplace_back(pick({"Stop", "SessionStart", "PreToolUse", "Stop", "Notification"}), groups());
            const auto place = root.begin() + static_cast<std::ptrdiff_t>(below(root.size() + 1));
            root.insert(place, {"hooks", std::move(events)});
        }
        return root;
    }

private:
    OrderedJSON groups()
    {
        OrderedJSON::Array groups;
        for (auto count = below(3) + 1; count > 0; --count) {
            auto group = object(1);
            if (below(4) > 0)
                group.emplace_back("hooks", OrderedJSON::Array{value(2), object(2)});
            groups.push_back(below(5) > 0 ? OrderedJSON{std::move(group)} : value(2));
        }
        return groups;
    }

    OrderedJSON::Object object(int depth)
    {
        OrderedJSON::Object members;
        for (auto count = below(4); count > 0; --count)
            members.emplace_back(pick({"a", "b", "command", "ключ", "k\n\"", "matcher", ""}), value(depth - 1));
        return members;
    }

    OrderedJSON value(int depth)
    {
        switch (below(depth > 0 ? 6 : 4)) {
        case 0:
            return pick({"", "plain", "a\\b\"c/\x01\x1f", "état 😀", "12345678", "agent"});
        case 1:
            return OrderedJSON::Number{pick({"1.50", "1e3", "-0", "12345678901234567890", "01", "+1"})};
        case 2:
            return below(2) == 0;
        case 3:
            return OrderedJSON::Null{};
        case 4:
            return object(depth);
        default:
            return OrderedJSON::Array{value(depth - 1), value(depth - 1)};
        }
    }

    std::size_t below(std::size_t end) { return random_() % end; }
    std::string pick(std::initializer_list<const char*> choices) { return choices.begin()[below(choices.size())]; }

    std::mt19937 random_;
};

/// `a` with the members of `b` that it lacks would be `b`: nothing of `a` is missing, nothing in another order.
bool survives(const OrderedJSON& a, const OrderedJSON& b)
{
    const auto within = [](const auto& few, const auto& many, auto same) {
        auto next = many.begin();
        for (const auto& entry : few) {
            next = std::find_if(next, many.end(), [&](const auto& other) { return same(entry, other); });
            if (next++ == many.end())
                return false;
        }
        return true;
    };
    if (const auto *mine = a.object(), *others = b.object(); mine && others)
        return within(
            *mine, *others, [](const auto& x, const auto& y) { return x.key == y.key && survives(x.value, y.value); });
    if (const auto *mine = a.array(), *others = b.array(); mine && others)
        return within(*mine, *others, survives);
    return a == b;
}

TEST(HookInstaller, LosesNothingOfAnyDocument)
{
    for (unsigned seed = 0; seed < 2'000; ++seed) {
        const auto agent = allAgentKinds[seed % 2];
        const auto installer = exampleInstaller(agent);
        const auto document = Documents{seed}.settings();
        const auto text = document.formatted() + (seed % 3 ? "\n" : "");
        SCOPED_TRACE(testing::Message() << "seed " << seed << "\n" << text);

        ASSERT_EQ(OrderedJSON::parse(text), document);
        const auto installed = installer.installing(text);
        ASSERT_TRUE(installed);
        ASSERT_EQ(installer.state(*installed), HookInstaller::State::installed);
        ASSERT_EQ(installer.installing(*installed), installed);
        ASSERT_TRUE(survives(document, OrderedJSON::parse(*installed).value()));
        ASSERT_EQ(installer.uninstalling(*installed), text);
    }
}

} // namespace
