#include "App/Agents/AuxiliaryExecutable.h"

#import <Foundation/Foundation.h>

namespace vespra {

std::optional<std::filesystem::path> auxiliaryExecutable(std::string_view name)
{
    NSString* wanted = [[NSString alloc] initWithBytes:name.data() length:name.size() encoding:NSUTF8StringEncoding];
    NSURL* url = [[NSBundle mainBundle] URLForAuxiliaryExecutable:wanted];
    if (!url)
        return {};
    return std::filesystem::path{url.fileSystemRepresentation};
}

} // namespace vespra
