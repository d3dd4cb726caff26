#include "App/System/macos/MacHelper.h"

#include "Core/Lifetime.h"
#include "HelperProtocol/Brand.h"

#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#import <Security/Security.h>
#import <ServiceManagement/ServiceManagement.h>

namespace vespra {

namespace {

    NSString* string(const std::string& text) { return @(text.c_str()); }

    class DaemonService final : public HelperService {
    public:
        explicit DaemonService(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
            , service_{[SMAppService daemonServiceWithPlistName:string(Brand::helperBundleID() + ".plist")]}
        {
        }

        void registerService(std::function<void(std::expected<void, std::string>)> done) override
        {
            NSError* error = nil;
            const BOOL isDone = [service_ registerAndReturnError:&error];
            tell(std::move(done), isDone, error);
        }
        void unregisterService(std::function<void(std::expected<void, std::string>)> done) override
        {
            NSError* error = nil;
            const BOOL isDone = [service_ unregisterAndReturnError:&error];
            tell(std::move(done), isDone, error);
        }
        void status(std::function<void(HelperServiceStatus)> reply) override
        {
            answer([reply = std::move(reply), now = current()] { reply(now); });
        }
        void openSettings() override { [SMAppService openSystemSettingsLoginItems]; }

    private:
        void tell(std::function<void(std::expected<void, std::string>)> done, BOOL isDone, NSError* error)
        {
            std::expected<void, std::string> result;
            if (!isDone)
                result = std::unexpected{
                    std::string{error ? error.localizedDescription.UTF8String : "refus sans explication"}};
            answer([done = std::move(done), result] { done(result); });
        }
        void answer(std::function<void()> task) { mainLoop_.post(lifetime_.guard(std::move(task))); }

        HelperServiceStatus current() const
        {
            switch (service_.status) {
            case SMAppServiceStatusNotRegistered:
                return HelperServiceStatus::notRegistered;
            case SMAppServiceStatusEnabled:
                return HelperServiceStatus::enabled;
            case SMAppServiceStatusRequiresApproval:
                return HelperServiceStatus::requiresApproval;
            case SMAppServiceStatusNotFound:
                return HelperServiceStatus::notFound;
            }
            return HelperServiceStatus::unknown;
        }

        MainLoop& mainLoop_;
        SMAppService* service_;
        Lifetime lifetime_;
    };

    bool hasLid()
    {
        const auto root = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPMrootDomain"));
        if (root == IO_OBJECT_NULL)
            return false;
        const id state = CFBridgingRelease(
            IORegistryEntryCreateCFProperty(root, CFSTR("AppleClamshellState"), kCFAllocatorDefault, 0));
        IOObjectRelease(root);
        return state != nil;
    }

    /// Nil for a program that is not signed by a team.
    NSString* signingTeam()
    {
        SecCodeRef code = nullptr;
        if (SecCodeCopySelf(kSecCSDefaultFlags, &code) != errSecSuccess)
            return nil;
        SecStaticCodeRef onDisk = nullptr;
        auto status = SecCodeCopyStaticCode(code, kSecCSDefaultFlags, &onDisk);
        CFRelease(code);
        if (status != errSecSuccess)
            return nil;
        CFDictionaryRef about = nullptr;
        status = SecCodeCopySigningInformation(onDisk, kSecCSSigningInformation, &about);
        CFRelease(onDisk);
        if (status != errSecSuccess)
            return nil;
        NSDictionary* information = CFBridgingRelease(about);
        id team = information[(__bridge NSString*)kSecCodeInfoTeamIdentifier];
        return [team isKindOfClass:[NSString class]] ? team : nil;
    }

    class MacMachineFacts final : public MachineFacts {
    public:
        explicit MacMachineFacts(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
            , reading_{.hasLid = hasLid(),
                  .isSignedByOwnTeam = [signingTeam() isEqualToString:string(Brand::teamID())] == YES}
        {
        }
        void read(std::function<void(Reading)> answer) override
        {
            mainLoop_.post(lifetime_.guard([this, answer = std::move(answer)] { answer(reading_); }));
        }

    private:
        MainLoop& mainLoop_;
        Reading reading_;
        Lifetime lifetime_;
    };

    class MacSystemPower final : public SystemPower {
    public:
        explicit MacSystemPower(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
        {
        }
        void sleepNow(Done done) override { answer(std::move(done), sleep()); }

    private:
        static std::expected<void, std::string> sleep()
        {
            const auto root = IOPMFindPowerManagement(MACH_PORT_NULL);
            if (root == IO_OBJECT_NULL)
                return std::unexpected{"IOPMFindPowerManagement"};
            const auto result = IOPMSleepSystem(root);
            IOServiceClose(root);
            if (result != kIOReturnSuccess)
                return std::unexpected{"IOPMSleepSystem : " + std::to_string(result)};
            return {};
        }
        void answer(Done done, std::expected<void, std::string> result)
        {
            mainLoop_.post([done = std::move(done), result = std::move(result)] { done(result); });
        }

        MainLoop& mainLoop_;
    };

} // namespace

PlatformHelper makeMacHelper(MainLoop& mainLoop)
{
    return {.service = std::make_shared<DaemonService>(mainLoop),
        .connect = [&mainLoop] { return makeXPCHelperConnection(mainLoop); },
        .facts = std::make_shared<MacMachineFacts>(mainLoop),
        .power = std::make_shared<MacSystemPower>(mainLoop)};
}

} // namespace vespra
