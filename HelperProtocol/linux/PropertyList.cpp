#include "HelperProtocol/PropertyList.h"

#include "HelperProtocol/linux/BuiltInBrandValues.h"

#include <cstdlib>

namespace vespra {

std::optional<std::string> propertyListText(std::string_view key)
{
    for (const auto& [known, text] : builtInBrandValues)
        if (known == key)
            return std::string{text};
    return {};
}

std::string homeDirectory()
{
    const char* home = std::getenv("HOME");
    return home && *home ? home : "/";
}

std::string supportDirectory(std::string_view home) { return std::string{home} + "/.local/share"; }

std::string supportDirectory()
{
    // Only an absolute path counts.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    return dataHome && *dataHome == '/' ? dataHome : supportDirectory(homeDirectory());
}

} // namespace vespra
