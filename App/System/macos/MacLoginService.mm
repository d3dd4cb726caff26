#include "App/System/macos/MacAdapters.h"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

namespace vespra {

namespace {

    class MacLoginService final : public LoginService {
    public:
        LoginServiceStatus status() const override
        {
            switch (SMAppService.mainAppService.status) {
            case SMAppServiceStatusEnabled:
                return LoginServiceStatus::enabled;
            case SMAppServiceStatusRequiresApproval:
                return LoginServiceStatus::requiresApproval;
            case SMAppServiceStatusNotRegistered:
            case SMAppServiceStatusNotFound:
                break;
            }
            return LoginServiceStatus::notRegistered;
        }
        std::expected<void, std::string> registerApplication() override
        {
            NSError* error = nil;
            return result([SMAppService.mainAppService registerAndReturnError:&error], error);
        }
        std::expected<void, std::string> unregisterApplication() override
        {
            NSError* error = nil;
            return result([SMAppService.mainAppService unregisterAndReturnError:&error], error);
        }
        void openSettings() override { [SMAppService openSystemSettingsLoginItems]; }

    private:
        static std::expected<void, std::string> result(BOOL done, NSError* error)
        {
            if (done)
                return {};
            return std::unexpected{
                std::string{error ? error.localizedDescription.UTF8String : "refus sans explication"}};
        }
    };

} // namespace

std::unique_ptr<LoginService> makeMacLoginService() { return std::make_unique<MacLoginService>(); }

} // namespace vespra
