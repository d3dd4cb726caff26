#include "App/System/ResourceFile.h"

#include "HelperProtocol/Brand.h"

namespace vespra {

std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name)
{
    std::error_code error;
    const auto programs = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    const auto path = programs.parent_path() / "share" / Brand::appName() / name;
    return std::filesystem::is_regular_file(path, error) ? std::optional{path} : std::nullopt;
}

} // namespace vespra
