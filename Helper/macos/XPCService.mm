#include "Helper/macos/XPCService.h"

#include "HelperProtocol/Brand.h"
#import "HelperProtocol/macos/HelperXPCInterface.h"

#import <Foundation/Foundation.h>

#include <map>

namespace {

using namespace vespra;

/// What the connections share; used on the main thread alone.
struct Daemon {
    HelperDaemon& logic;
    std::function<void()> onRequest;
    int lastClient = 0;
    std::map<int, std::unique_ptr<vespra::HelperXPCProtocol>> sessions{};
};

NSString* text(const HelperRefusal& refusal) { return refusal ? @(refusal->c_str()) : nil; }

} // namespace

/// One client, from its first request to the end of its connection.
@interface VespraHelperClient : NSObject <HelperXPCProtocol>
- (instancetype)initWithDaemon:(std::shared_ptr<Daemon>)daemon;
- (void)end;
@end

@implementation VespraHelperClient {
    std::weak_ptr<Daemon> _daemon;
    int _number; // 0 before the first request
    BOOL _hasEnded;
}

- (instancetype)initWithDaemon:(std::shared_ptr<Daemon>)daemon
{
    if ((self = [super init]))
        _daemon = daemon;
    return self;
}

/// Nothing once the client or the daemon has gone: its requests stay without reply.
- (vespra::HelperXPCProtocol*)session
{
    const auto daemon = _daemon.lock();
    if (!daemon || _hasEnded)
        return nullptr;
    notify(daemon->onRequest);
    if (_number == 0)
        _number = ++daemon->lastClient;
    auto& session = daemon->sessions[_number];
    if (!session)
        session = daemon->logic.clientSession(std::to_string(_number));
    return session.get();
}

- (void)end
{
    dispatch_async(dispatch_get_main_queue(), ^{
        self->_hasEnded = YES;
        if (const auto daemon = self->_daemon.lock())
            daemon->sessions.erase(self->_number);
    });
}

- (void)askRefusal:(void (vespra::HelperXPCProtocol::*)(HelperReply<HelperRefusal>))operation
             reply:(void (^)(NSString*))reply
{
    dispatch_async(dispatch_get_main_queue(), ^{
        if (auto* session = [self session])
            (session->*operation)([reply](const auto& value) { reply(text(value.value_or(HelperRefusal{}))); });
    });
}

- (void)protocolVersionWithReply:(void (^)(NSInteger))reply
{
    dispatch_async(dispatch_get_main_queue(), ^{
        if (auto* session = [self session])
            session->protocolVersion([reply](const auto& value) { reply(value.value_or(0)); });
    });
}

- (void)enableClosedLidWithReply:(void (^)(NSString*))reply
{
    [self askRefusal:&vespra::HelperXPCProtocol::enableClosedLid reply:reply];
}

- (void)heartbeatWithReply:(void (^)(BOOL))reply
{
    dispatch_async(dispatch_get_main_queue(), ^{
        if (auto* session = [self session])
            session->heartbeat([reply](const auto& value) { reply(value.value_or(false)); });
    });
}

- (void)restoreSleepWithReply:(void (^)(NSString*))reply
{
    [self askRefusal:&vespra::HelperXPCProtocol::restoreSleep reply:reply];
}

- (void)sleepNowWithReply:(void (^)(NSString*))reply
{
    [self askRefusal:&vespra::HelperXPCProtocol::sleepNow reply:reply];
}

- (void)shutDownWithReply:(void (^)(NSString*))reply
{
    [self askRefusal:&vespra::HelperXPCProtocol::shutDown reply:reply];
}

@end

@interface VespraHelperListener : NSObject <NSXPCListenerDelegate>
- (instancetype)initWithDaemon:(std::shared_ptr<Daemon>)daemon;
@end

@implementation VespraHelperListener {
    std::shared_ptr<Daemon> _daemon;
}

- (instancetype)initWithDaemon:(std::shared_ptr<Daemon>)daemon
{
    if ((self = [super init]))
        _daemon = daemon;
    return self;
}

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)newConnection
{
    VespraHelperClient* client = [[VespraHelperClient alloc] initWithDaemon:_daemon];
    newConnection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(HelperXPCProtocol)];
    newConnection.exportedObject = client;
    newConnection.invalidationHandler = ^{
        [client end];
    };
    [newConnection resume];
    return YES;
}

@end

namespace vespra {

struct XPCService::Listener {
    std::shared_ptr<Daemon> daemon;
    NSXPCListener* listener;
    VespraHelperListener* delegate;
};

XPCService::XPCService(HelperDaemon& daemon, std::function<void()> onRequest)
    : listener_{std::make_unique<Listener>()}
{
    listener_->daemon = std::make_shared<Daemon>(Daemon{.logic = daemon, .onRequest = std::move(onRequest)});
    listener_->delegate = [[VespraHelperListener alloc] initWithDaemon:listener_->daemon];
    listener_->listener = [[NSXPCListener alloc] initWithMachServiceName:@(Brand::helperMachServiceName().c_str())];
    const auto requirement = Brand::codeSigningRequirement(Brand::appBundleID());
    [listener_->listener setConnectionCodeSigningRequirement:@(requirement.c_str())];
    listener_->listener.delegate = listener_->delegate;
    [listener_->listener resume];
}

XPCService::~XPCService()
{
    [listener_->listener invalidate];
    listener_->daemon->sessions.clear();
}

} // namespace vespra
