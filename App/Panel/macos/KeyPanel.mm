#import "App/Panel/macos/KeyPanel.h"

#include "App/Panel/EditShortcuts.h"

#include <QApplication>

namespace {

/// What the keys of `event` stand for, carried out where the focus is.
bool edits(NSEvent* event)
{
    const NSEventModifierFlags modifiers
        = event.modifierFlags & (NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl);
    NSString* characters = event.charactersIgnoringModifiers.lowercaseString;
    if (modifiers != NSEventModifierFlagCommand || characters.length != 1)
        return false;
    const bool hasShift = (event.modifierFlags & NSEventModifierFlagShift) != 0;
    const auto command = vespra::editShortcuts::command([characters characterAtIndex:0], hasShift);
    return command && vespra::editShortcuts::carryOut(*command, QApplication::focusWidget());
}

} // namespace

@implementation VespraKeyPanel
- (BOOL)canBecomeKeyWindow
{
    return YES;
}
- (BOOL)canBecomeMainWindow
{
    return NO;
}
- (void)cancelOperation:(id)sender
{
    if (self.onCancel)
        self.onCancel();
}
- (BOOL)performKeyEquivalent:(NSEvent*)event
{
    return edits(event) || [super performKeyEquivalent:event];
}
@end
