#include "App/System/macos/MacHelper.h"

#include "Core/Lifetime.h"
#include "HelperProtocol/Brand.h"
#import "HelperProtocol/macos/HelperXPCInterface.h"

#import <Foundation/Foundation.h>

namespace vespra {

namespace {

    HelperRefusal refusal(NSString* text) { return text ? HelperRefusal{text.UTF8String} : HelperRefusal{}; }

    HelperUnreachable unreachable(NSError* error)
    {
        return {error ? error.localizedDescription.UTF8String : "erreur inconnue"};
    }

    class XPCHelperConnection final : public HelperConnection {
    public:
        explicit XPCHelperConnection(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
            , connection_
        {
            [[NSXPCConnection alloc] initWithMachServiceName:@(Brand::helperMachServiceName().c_str())
                                                     options:NSXPCConnectionPrivileged]
        }
        {
            connection_.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(HelperXPCProtocol)];
            const auto requirement = Brand::codeSigningRequirement(Brand::helperBundleID());
            [connection_ setCodeSigningRequirement:@(requirement.c_str())];
            auto* const loop = &mainLoop_;
            const std::function<void()> ended = lifetime_.guard([this] { notify(onInvalidation); });
            connection_.invalidationHandler = ^{
                loop->post(ended);
            };
            // A component that crashed is started anew by the next request, and knows this client no longer.
            connection_.interruptionHandler = ^{
                loop->post(ended);
            };
            [connection_ resume];
        }
        ~XPCHelperConnection() override
        {
            connection_.invalidationHandler = nil;
            connection_.interruptionHandler = nil;
            [connection_ invalidate];
        }

        void protocolVersion(HelperReply<std::int64_t> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) protocolVersionWithReply:^(NSInteger version) {
                answer(std::int64_t{version});
            }];
        }
        void enableClosedLid(HelperReply<HelperRefusal> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) enableClosedLidWithReply:^(NSString* error) {
                answer(refusal(error));
            }];
        }
        void heartbeat(HelperReply<bool> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) heartbeatWithReply:^(BOOL inForce) {
                answer(static_cast<bool>(inForce));
            }];
        }
        void restoreSleep(HelperReply<HelperRefusal> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) restoreSleepWithReply:^(NSString* error) {
                answer(refusal(error));
            }];
        }
        void sleepNow(HelperReply<HelperRefusal> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) sleepNowWithReply:^(NSString* error) {
                answer(refusal(error));
            }];
        }
        void shutDown(HelperReply<HelperRefusal> reply) override
        {
            const auto answer = onMainThread(std::move(reply));
            [proxy(answer) shutDownWithReply:^(NSString* error) {
                answer(refusal(error));
            }];
        }

        std::expected<HelperRefusal, HelperUnreachable> restoreSleepAndWait(Seconds timeout) override
        {
            using Result = std::expected<HelperRefusal, HelperUnreachable>;
            // Shared: the reply may come after the wait is over.
            const auto result = std::make_shared<Result>(std::unexpected{HelperUnreachable{"délai dépassé"}});
            const auto done = dispatch_semaphore_create(0);
            const std::function<void(Result)> answer = [result, done](Result reply) {
                *result = std::move(reply);
                dispatch_semaphore_signal(done);
            };
            [proxy(answer) restoreSleepWithReply:^(NSString* error) {
                answer(refusal(error));
            }];
            const auto limit = std::chrono::duration_cast<std::chrono::nanoseconds>(timeout).count();
            if (dispatch_semaphore_wait(done, dispatch_time(DISPATCH_TIME_NOW, limit)) != 0)
                return std::unexpected{HelperUnreachable{"délai dépassé"}};
            return *result;
        }

    private:
        /// From XPC's queue to the main thread; dropped there if the connection has gone.
        template <class Value> HelperReply<Value> onMainThread(HelperReply<Value> reply)
        {
            const HelperReply<Value> guarded = lifetime_.guard(std::move(reply));
            return [loop = &mainLoop_, guarded](std::expected<Value, HelperUnreachable> value) {
                loop->post([guarded, value] { guarded(value); });
            };
        }

        template <class Value> id<HelperXPCProtocol> proxy(const HelperReply<Value>& answer)
        {
            const auto copy = answer;
            return [connection_ remoteObjectProxyWithErrorHandler:^(NSError* error) {
                copy(std::unexpected{unreachable(error)});
            }];
        }

        MainLoop& mainLoop_;
        NSXPCConnection* connection_;
        Lifetime lifetime_;
    };

} // namespace

std::unique_ptr<HelperConnection> makeXPCHelperConnection(MainLoop& mainLoop)
{
    return std::make_unique<XPCHelperConnection>(mainLoop);
}

} // namespace vespra
