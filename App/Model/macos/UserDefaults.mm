#include "App/Model/UserDefaults.h"

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

namespace vespra {

namespace {

    NSString* keyText(std::string_view key)
    {
        return [[NSString alloc] initWithBytes:key.data() length:key.size() encoding:NSUTF8StringEncoding];
    }

    id stored(std::string_view key) { return [[NSUserDefaults standardUserDefaults] objectForKey:keyText(key)]; }

    class StandardUserDefaults final : public UserDefaults {
    public:
        std::optional<std::string> data(std::string_view key) const override
        {
            id object = stored(key);
            if (![object isKindOfClass:[NSData class]])
                return {};
            NSData* data = object;
            return std::string{static_cast<const char*>(data.bytes), data.length};
        }

        std::optional<bool> boolean(std::string_view key) const override
        {
            id object = stored(key);
            // A number is no boolean, though the two share a class.
            if (!object || CFGetTypeID((__bridge CFTypeRef)object) != CFBooleanGetTypeID())
                return {};
            return [object boolValue];
        }

        void setData(std::string_view key, std::string_view data) override
        {
            [[NSUserDefaults standardUserDefaults] setObject:[NSData dataWithBytes:data.data() length:data.size()]
                                                      forKey:keyText(key)];
        }

        void setBoolean(std::string_view key, bool value) override
        {
            [[NSUserDefaults standardUserDefaults] setBool:value forKey:keyText(key)];
        }
    };

} // namespace

std::unique_ptr<UserDefaults> makeUserDefaults() { return std::make_unique<StandardUserDefaults>(); }

} // namespace vespra
