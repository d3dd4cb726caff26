#include "Core/Agents/OrderedJSON.h"
#include "Tests/Fuzz/Check.h"

#include <cstdint>

using namespace vespra;

/// What has been read prints to something that reads as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text{reinterpret_cast<const char*>(data), size};
    const auto value = OrderedJSON::parse(text);
    if (!value) {
        check(value.error().offset <= size);
        return 0;
    }
    const auto printed = value->formatted();
    const auto again = OrderedJSON::parse(printed);
    check(again == *value);
    check(again->formatted() == printed);
    return 0;
}
