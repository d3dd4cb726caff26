#include "Core/Agents/OrderedJSON.h"

#include <gtest/gtest.h>

#include <ranges>

using namespace vespra;
using namespace std::string_literals;

namespace {

OrderedJSON parsed(std::string_view text) { return OrderedJSON::parse(text).value(); }

TEST(OrderedJSON, PrintsWhatItRead)
{
    for (const auto& [text, printed] : std::vector<std::pair<std::string, std::string>>{
             {R"({"b":1,"a":2,"b":null})", "{\n  \"b\": 1,\n  \"a\": 2,\n  \"b\": null\n}"},
             {"\t[1.0, 2e10,\r\n-0, 01, +1, 5., .5, 12345678901234567890, 1E-400] ",
                 "[\n  1.0,\n  2e10,\n  -0,\n  01,\n  +1,\n  5.,\n  .5,\n  12345678901234567890,\n  1E-400\n]"},
             {"[[],{},[{}]]", "[\n  [],\n  {},\n  [\n    {}\n  ]\n]"},
             {"true", "true"},
             {" false ", "false"},
             {R"("\ud83d\ude00 \u00e9\u20AC\u0041")", "\"😀 é€A\""},
             {R"("\"\\\/\b\f\n\r\t\u0001\u001f")", R"("\"\\/\b\f\n\r\t\u0001\u001f")"},
             {"\"\x7F ÿ ﷽ \U0010FFFF\"", "\"\x7F ÿ ﷽ \U0010FFFF\""},
             {R"("\u0000")", R"("\u0000")"},
             // Around the eight bytes that are looked at together.
             {R"("1234567\"1234567\\12345678é1234567")", R"("1234567\"1234567\\12345678é1234567")"},
         })
        EXPECT_EQ(parsed(text).formatted(), printed) << text;
}

TEST(OrderedJSON, NamesTheFirstByteThatIsWrong)
{
    // A circumflex stands before that byte.
    const auto texts
        = R"(^~  ^~{}  ^x~[1,^]~[1 ^2]~[1^~{"a":1,^}~{"a" ^1}~{^a:1}~{"a":^}~{^~tru^x~nul^~[^1.2.3]~ ^-~^1e~^.)"
          R"(~^+-1~^1e+~n^an~^x~"abc^~"\^x"~"\^~"\u12^g4"~"\ud83d^"~"\ud83d\^n"~"\^ud83d\u0041"~"\^ude00")"
          "~^\xEF\xBB\xBF{}~^\xC2\xA0{}~\"a^\nb\"~\"a^\0b\""
          // Ill-formed UTF-8: a lone trailing byte, overlong forms, a surrogate, too large, cut short.
          "~\"a^\x80\"~\"a^\xC0\x80\"~\"a^\xC1\xBF\"~\"^\xE0\x9F\xBF\"~\"^\xED\xA0\x80\"~\"^\xF0\x8F\xBF\xBF\""
          "~\"^\xF4\x90\x80\x80\"~\"^\xF5\x80\x80\x80\"~\"12345678^\xE2\x82\""s;
    for (const auto part : std::views::split(texts, '~')) {
        std::string text{part.begin(), part.end()};
        const auto offset = text.find('^');
        const auto result = OrderedJSON::parse(text.erase(offset, 1));
        ASSERT_FALSE(result) << text;
        EXPECT_EQ(result.error().offset, offset) << text;
    }
}

TEST(OrderedJSON, SetsTheFirstMemberInItsPlaceAndAppendsNewOnes)
{
    const auto object = parsed(R"({"a":1,"b":2,"a":3})");
    EXPECT_EQ(object.setting("a", "x"), parsed(R"({"a":"x","b":2,"a":3})"));
    EXPECT_EQ(object.setting("c", true), parsed(R"({"a":1,"b":2,"a":3,"c":true})"));
    EXPECT_EQ(object.setting("a", std::nullopt), parsed(R"({"b":2,"a":3})"));
    EXPECT_EQ(object.setting("c", std::nullopt), object);
    EXPECT_EQ(object, parsed(R"({"a":1,"b":2,"a":3})"));
    EXPECT_EQ(parsed("[1]").setting("a", true), parsed("[1]"));
    ASSERT_TRUE(object["a"]);
    EXPECT_EQ(*object["a"], OrderedJSON::Number{"1"});
    EXPECT_FALSE(object["c"]);
    EXPECT_FALSE(parsed(R"("a")")["a"]);
}

TEST(OrderedJSON, EqualityIsOfOrderAndSpelling)
{
    for (const auto& [one, other] : std::vector<std::pair<const char*, const char*>>{
             {R"({"a":1,"b":2})", R"({"b":2,"a":1})"},
             {"[1.0]", "[1]"},
             {R"("1")", "1"},
             {"[]", "{}"},
             {"null", "false"},
             {R"({"a":[{"b":1}]})", R"({"a":[{"b":2}]})"},
         }) {
        EXPECT_NE(parsed(one), parsed(other)) << one;
        EXPECT_EQ(parsed(one), parsed(one)) << one;
    }
}

TEST(OrderedJSON, NestsAThousandDeepAndNoDeeper)
{
    constexpr auto limit = OrderedJSON::deepestNesting;
    const auto nested = [](std::size_t levels) {
        std::string text;
        for (std::size_t i = 0; i < levels; ++i)
            text += i % 2 ? "{\"k\":" : "[";
        text += '0';
        for (std::size_t i = levels; i-- > 0;)
            text += i % 2 ? '}' : ']';
        return text;
    };
    EXPECT_GE(limit, 1'000u);
    const auto deepest = parsed(nested(limit));
    EXPECT_EQ(parsed(deepest.formatted()), deepest);
    const auto tooDeep = OrderedJSON::parse(nested(limit + 1));
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(tooDeep.error().offset, limit / 2 * 6); // the bracket that is one too many
    EXPECT_FALSE(OrderedJSON::parse(std::string(1'000'000, '[')));
    // However many stand beside each other.
    std::string wide = "[[],{}";
    for (std::size_t i = 0; i < limit; ++i)
        wide += ",[[{\"k\":{}}]]";
    EXPECT_TRUE(OrderedJSON::parse(wide + "]"));
}

} // namespace
