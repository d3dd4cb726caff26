#pragma once

#import <AppKit/AppKit.h>

/// A window that takes keys without its application coming to the front, and is never the main one.
@interface VespraKeyPanel : NSPanel
/// Escape.
@property (nonatomic, copy) void (^onCancel)(void);
@end
