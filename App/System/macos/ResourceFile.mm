#include "App/System/ResourceFile.h"

#import <Foundation/Foundation.h>

namespace vespra {

std::optional<std::filesystem::path> resourceFile(const std::filesystem::path& name)
{
    NSString* resources = [[NSBundle mainBundle] resourcePath];
    if (!resources)
        return {};
    const auto path = std::filesystem::path{resources.fileSystemRepresentation} / name;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? std::optional{path} : std::nullopt;
}

} // namespace vespra
