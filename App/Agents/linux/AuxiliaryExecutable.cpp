#include "App/Agents/AuxiliaryExecutable.h"

namespace vespra {

std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name)
{
    std::error_code error;
    const auto directory = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const auto& path : {directory / name, directory.parent_path() / "libexec/vespra" / name})
        if (std::filesystem::is_regular_file(path, error))
            return path;
    return {};
}

} // namespace vespra
