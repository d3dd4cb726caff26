#pragma once

#import <AppKit/AppKit.h>

/// The dot of a running session: a circle in the accent colour.
@interface StatusDotView : NSView
@end
