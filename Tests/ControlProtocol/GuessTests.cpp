#include "ControlProtocol/Guess.h"

#include <gtest/gtest.h>

#include <map>

using namespace vespra;

namespace {

TEST(Guess, IsTheNearestWordThatIsAnother)
{
    const std::vector<std::string> known{"start", "status", "stop", "set", "--headless"};
    for (const auto& [word, nearest] : std::map<std::string, std::optional<std::string>>{{"statsu", "status"},
             {"star", "start"},
             {"stops", "stop"},
             {"-headless", "--headless"},
             {"get", "set"},
             {"start", {}},
             {"begin", {}},
             {"xy", {}},
             {"", {}}})
        EXPECT_EQ(guess(word, known), nearest) << word;
}

} // namespace
