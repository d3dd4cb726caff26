#include "HelperProtocol/PropertyList.h"

#include "HelperProtocol/linux/BuiltInBrandValues.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <pwd.h>
#include <unistd.h>

namespace vespra {

namespace {

    /// The file itself, not the system's other sources of users: those would be loaded at run time, which the hook
    /// tool, a static program, cannot do, and may have to be asked over the network.
    std::optional<std::string> homeInPasswordFile()
    {
        const std::unique_ptr<FILE, decltype([](FILE* file) { std::fclose(file); })> file{
            std::fopen("/etc/passwd", "re")};
        passwd entry{};
        passwd* read = nullptr;
        char buffer[4096];
        while (file && fgetpwent_r(file.get(), &entry, buffer, sizeof buffer, &read) == 0)
            if (entry.pw_uid == geteuid() && *entry.pw_dir)
                return entry.pw_dir;
        return {};
    }

} // namespace

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
    return home && *home ? home : homeInPasswordFile().value_or("/");
}

std::string supportDirectory(std::string_view home) { return std::string{home} + "/.local/share"; }

std::string supportDirectory()
{
    // Only an absolute path counts.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    return dataHome && *dataHome == '/' ? dataHome : supportDirectory(homeDirectory());
}

} // namespace vespra
