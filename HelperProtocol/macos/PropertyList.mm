#include "HelperProtocol/PropertyList.h"

#import <Foundation/Foundation.h>

namespace vespra {

std::optional<std::string> propertyListText(std::string_view key)
{
    NSString* name = [[NSString alloc] initWithBytes:key.data() length:key.size() encoding:NSUTF8StringEncoding];
    id value = [[NSBundle mainBundle] objectForInfoDictionaryKey:name];
    if (![value isKindOfClass:[NSString class]])
        return {};
    return std::string{[static_cast<NSString*>(value) UTF8String]};
}

std::string homeDirectory()
{
    NSString* home = NSHomeDirectory();
    return home.length > 0 ? std::string{home.UTF8String} : "/";
}

std::string supportDirectory(std::string_view home) { return std::string{home} + "/Library/Application Support"; }

std::string supportDirectory() { return supportDirectory(homeDirectory()); }

} // namespace vespra
