#include "App/System/macos/MacAdapters.h"
#include "App/System/macos/NotificationObserver.h"
#include "Core/Scheduling/MainThread.h"

#import <AppKit/AppKit.h>

/// Tells of the application's appearance, for which there is no notification.
@interface VespraAppearanceObserver : NSObject
@property (nonatomic, copy) void (^onChange)(void);
@end

@implementation VespraAppearanceObserver
- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context
{
    self.onChange();
}
@end

namespace vespra {

namespace {

    NSString* const effectiveAppearance = @"effectiveAppearance";

    class MacAppearance final : public AppearanceMonitoring {
    public:
        MacAppearance()
            // Without windows there is none, and nothing to follow.
            : application_{NSApp}
            , observer_{[[VespraAppearanceObserver alloc] init]}
            , displayOptions_{[NSWorkspace sharedWorkspace].notificationCenter,
                  NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification,
                  [this] { refresh(); }}
        {
            observer_.onChange = ^{
                refresh();
            };
            [application_ addObserver:observer_ forKeyPath:effectiveAppearance options:0 context:nullptr];
            refresh();
        }
        ~MacAppearance() override { [application_ removeObserver:observer_ forKeyPath:effectiveAppearance]; }

    private:
        void refresh()
        {
            mainThread::check();
            NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
            NSAppearanceName name = [application_.effectiveAppearance
                bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
            update({
                .isDark = [name isEqualToString:NSAppearanceNameDarkAqua] == YES,
                .hasHighContrast = workspace.accessibilityDisplayShouldIncreaseContrast == YES,
                .reducesMotion = workspace.accessibilityDisplayShouldReduceMotion == YES,
            });
        }

        NSApplication* application_;
        VespraAppearanceObserver* observer_;
        NotificationObserver displayOptions_;
    };

} // namespace

std::unique_ptr<AppearanceMonitoring> makeMacAppearance() { return std::make_unique<MacAppearance>(); }

} // namespace vespra
