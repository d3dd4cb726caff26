#include "App/System/macos/MacAdapters.h"
#include "Core/Lifetime.h"

#import <Foundation/Foundation.h>

// What is used of the framework, which is in the application's bundle, or not: nothing is linked to it.

@protocol VespraSparkleUpdater <NSObject>
@property (nonatomic) BOOL automaticallyChecksForUpdates;
@property (nonatomic) BOOL automaticallyDownloadsUpdates;
@property (nonatomic, readonly, copy) NSDate* lastUpdateCheckDate;
@end

@protocol VespraSparkleController <NSObject>
@property (nonatomic, readonly) id<VespraSparkleUpdater> updater;
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (void)checkForUpdates:(id)sender;
@end

@protocol VespraSparkleItem <NSObject>
@property (nonatomic, readonly, copy) NSString* displayVersionString;
@end

@protocol VespraSparkleState <NSObject>
@property (nonatomic, readonly) BOOL userInitiated;
@end

@interface VespraSparkleDelegate : NSObject
@property (nonatomic, assign) vespra::Updater* owner;
@end

@implementation VespraSparkleDelegate

/// A check that nobody asked for does not come to the front.
- (BOOL)supportsGentleScheduledUpdateReminders
{
    return YES;
}

- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(id<VespraSparkleItem>)update
                                            state:(id<VespraSparkleState>)state
{
    if (self.owner)
        vespra::notify(self.owner->onWillShowUpdate,
            std::string{update.displayVersionString.UTF8String},
            state.userInitiated == YES);
}

- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(id<VespraSparkleItem>)update
{
    if (self.owner)
        vespra::notify(self.owner->onUpdateSeen);
}

- (void)standardUserDriverWillFinishUpdateSession
{
    if (self.owner)
        vespra::notify(self.owner->onUpdateSeen);
}

- (void)updater:(id<VespraSparkleUpdater>)updater
    didFinishUpdateCycleForUpdateCheck:(NSInteger)updateCheck
                                 error:(NSError*)error
{
    if (self.owner)
        vespra::notify(self.owner->onCycleFinished);
}

@end

namespace vespra {

namespace {

    /// Nil where the bundle has no such framework, or names no feed: started without one, it would complain in a
    /// window.
    Class controllerClass()
    {
        if (![NSBundle.mainBundle objectForInfoDictionaryKey:@"SUFeedURL"])
            return nil;
        NSString* path =
            [NSBundle.mainBundle.privateFrameworksPath stringByAppendingPathComponent:@"Sparkle.framework"];
        if (!path || ![[NSBundle bundleWithPath:path] load])
            return nil;
        return NSClassFromString(@"SPUStandardUpdaterController");
    }

    class SparkleUpdater final : public Updater {
    public:
        explicit SparkleUpdater(Class controllerClass)
            : delegate_{[[VespraSparkleDelegate alloc] init]}
        {
            delegate_.owner = this;
            const id<VespraSparkleController> unstarted = [controllerClass alloc];
            controller_ = [unstarted initWithStartingUpdater:YES
                                             updaterDelegate:delegate_
                                          userDriverDelegate:delegate_];
        }
        ~SparkleUpdater() override { delegate_.owner = nullptr; }
        SparkleUpdater(const SparkleUpdater&) = delete;
        SparkleUpdater& operator=(const SparkleUpdater&) = delete;

        bool automaticallyChecks() const override { return controller_.updater.automaticallyChecksForUpdates; }
        void setAutomaticallyChecks(bool checks) override
        {
            controller_.updater.automaticallyChecksForUpdates = checks;
        }
        bool automaticallyInstalls() const override { return controller_.updater.automaticallyDownloadsUpdates; }
        void setAutomaticallyInstalls(bool installs) override
        {
            controller_.updater.automaticallyDownloadsUpdates = installs;
        }
        std::optional<Instant> lastCheck() const override
        {
            NSDate* date = controller_.updater.lastUpdateCheckDate;
            return date ? std::optional{Instant::fromReferenceDate(Seconds{date.timeIntervalSinceReferenceDate})}
                        : std::nullopt;
        }
        void checkForUpdates() override { [controller_ checkForUpdates:nil]; }
        bool hasWindows() const override { return true; }

    private:
        VespraSparkleDelegate* delegate_;
        id<VespraSparkleController> controller_;
    };

} // namespace

std::unique_ptr<Updater> makeSparkleUpdater()
{
    const Class found = controllerClass();
    return found ? std::make_unique<SparkleUpdater>(found) : nullptr;
}

} // namespace vespra
