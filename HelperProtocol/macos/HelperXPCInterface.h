#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/// The privileged component's operations as they go over XPC. An absent text is a success.
@protocol HelperXPCProtocol
- (void)protocolVersionWithReply:(void (^)(NSInteger version))reply;
- (void)enableClosedLidWithReply:(void (^)(NSString* _Nullable error))reply;
- (void)heartbeatWithReply:(void (^)(BOOL inForce))reply;
- (void)restoreSleepWithReply:(void (^)(NSString* _Nullable error))reply;
- (void)sleepNowWithReply:(void (^)(NSString* _Nullable error))reply;
- (void)shutDownWithReply:(void (^)(NSString* _Nullable error))reply;
@end

NS_ASSUME_NONNULL_END
