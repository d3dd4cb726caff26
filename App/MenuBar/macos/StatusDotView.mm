#import "App/MenuBar/macos/StatusDotView.h"

#include "App/DesignSystem/Tokens.h"
#include "App/MenuBar/StatusItemDrawing.h"

#import <QuartzCore/QuartzCore.h>

@implementation StatusDotView

- (instancetype)initWithFrame:(NSRect)frame
{
    if ((self = [super initWithFrame:frame])) {
        self.wantsLayer = YES;
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [NSLayoutConstraint activateConstraints:@[
            [self.widthAnchor constraintEqualToConstant:vespra::statusImage::dotSize],
            [self.heightAnchor constraintEqualToConstant:vespra::statusImage::dotSize],
        ]];
    }
    return self;
}

- (BOOL)wantsUpdateLayer
{
    return YES;
}

/// The menu bar is light or dark as the wallpaper has it, so the colour goes by this view's appearance.
- (void)updateLayer
{
    NSAppearanceName name = [self.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    const vespra::Appearance appearance{.isDark = [name isEqualToString:NSAppearanceNameDarkAqua] == YES};
    const QColor color = vespra::tokens(appearance).accentFill;
    self.layer.backgroundColor =
        [NSColor colorWithSRGBRed:color.redF() green:color.greenF() blue:color.blueF() alpha:1].CGColor;
    self.layer.cornerRadius = NSHeight(self.bounds) / 2;
}

- (void)viewDidChangeEffectiveAppearance
{
    [super viewDidChangeEffectiveAppearance];
    self.needsDisplay = YES;
}

/// Clicks are the button's.
- (NSView*)hitTest:(NSPoint)point
{
    return nil;
}

@end
