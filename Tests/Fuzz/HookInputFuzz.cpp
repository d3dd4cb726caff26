#include "Core/Agents/AgentEvent.h"
#include "Core/Agents/HookInput.h"
#include "Tests/Fuzz/Check.h"

#include <nlohmann/json.hpp>

#include <cstdint>

using namespace vespra;

/// What the JSON library reads is read alike. The library takes a zero byte for the end.
static void checkAgainstLibrary(std::string_view input)
{
    if (input.contains('\0'))
        return;
    if (const auto json = parsedJSON(input))
        check(parsedHookInput(input) == (json->is_object() ? std::optional{hookInput(*json)} : std::nullopt));
}

/// An input that can be read is complete at its last bracket and not before, and reads alike wherever it is cut.
static void checkPieces(std::string_view input)
{
    using Progress = HookInputParser::Progress;
    const auto last = input.rfind('}');
    HookInputParser parser;
    check(parser.add(input.substr(0, last / 2)) == Progress::incomplete);
    check(parser.add(input.substr(last / 2, last - last / 2)) == Progress::incomplete);
    check(parser.add(input.substr(last)) == Progress::complete);
    check(parser.input() == parsedHookInput(input));
}

/// An event that the hook command makes of its input reaches the application as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input{reinterpret_cast<const char*>(data), size};
    checkAgainstLibrary(input);
    if (parsedHookInput(input))
        checkPieces(input);
    const auto event = agentEvent(input, allAgentKinds[size % 2], Instant{});
    if (!event)
        return 0;
    check(!event->sessionID.empty());
    const auto line = encoded(*event);
    check(!line.contains('\n'));
    check(decodedAgentEvent(line) == *event);
    return 0;
}
