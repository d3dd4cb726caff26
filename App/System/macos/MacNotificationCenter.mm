#include "App/System/macos/MacAdapters.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainThread.h"
#include "HelperProtocol/Brand.h"
#include "Log/SystemLog.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <algorithm>
#include <utility>

/// Hands responses over on whatever thread they arrive; they are for the main thread.
@interface VespraNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
- (instancetype)initWithHandler:(void (^)(NSString* notification, NSString* action))handler;
@end

@implementation VespraNotificationDelegate {
    void (^_handler)(NSString*, NSString*);
}

- (instancetype)initWithHandler:(void (^)(NSString* notification, NSString* action))handler
{
    if ((self = [super init]))
        _handler = [handler copy];
    return self;
}

/// Also while the application is in front.
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
        | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    NSString* action = response.actionIdentifier;
    if (![action isEqualToString:UNNotificationDismissActionIdentifier]) {
        const bool isClick = [action isEqualToString:UNNotificationDefaultActionIdentifier];
        _handler(response.notification.request.identifier, isClick ? @"" : action);
    }
    completionHandler();
}
@end

namespace vespra {

namespace {

    NSString* string(const std::string& text) { return @(text.c_str()); }

    void log(NSError* error)
    {
        SystemLog{Brand::appBundleID(), "notifications"}.error(
            std::string{"Notification impossible : "} + error.localizedDescription.UTF8String);
    }

    NSSet<UNNotificationCategory*>* translated(const std::vector<NotificationCategory>& categories)
    {
        NSMutableSet<UNNotificationCategory*>* all = [NSMutableSet set];
        for (const auto& category : categories) {
            NSMutableArray<UNNotificationAction*>* actions = [NSMutableArray array];
            for (const auto& action : category.actions)
                [actions addObject:[UNNotificationAction actionWithIdentifier:string(action.identifier)
                                                                        title:string(action.title)
                                                                      options:UNNotificationActionOptionNone]];
            [all addObject:[UNNotificationCategory categoryWithIdentifier:string(category.identifier)
                                                                  actions:actions
                                                        intentIdentifiers:@[]
                                                                  options:UNNotificationCategoryOptionNone]];
        }
        return all;
    }

    class MacNotificationCenter final : public UserNotificationCenter {
    public:
        explicit MacNotificationCenter(MainLoop& mainLoop)
            : mainLoop_{mainLoop}
            , center_{[UNUserNotificationCenter currentNotificationCenter]}
        {
            auto* loop = &mainLoop;
            // Copied on whatever thread a response arrives; guarded, and so called, on the main thread only.
            const std::function<void(NotificationResponse)> receive
                = lifetime_.guard([this](const NotificationResponse& response) { notify(onResponse, response); });
            delegate_ =
                [[VespraNotificationDelegate alloc] initWithHandler:^(NSString* notification, NSString* action) {
                    const NotificationResponse response{notification.UTF8String, action.UTF8String};
                    loop->post([receive, response] { receive(response); });
                }];
            center_.delegate = delegate_;
        }
        ~MacNotificationCenter() override { center_.delegate = nil; }

        void setCategories(std::vector<NotificationCategory> categories) override
        {
            [center_ setNotificationCategories:translated(categories)];
        }
        void requestAuthorization() override
        {
            isUndecided_ = true;
            auto* loop = &mainLoop_;
            const std::function<void()> decided = lifetime_.guard([this] { postWaiting(); });
            [center_ requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                                   completionHandler:^(BOOL, NSError* error) {
                                       if (error)
                                           log(error);
                                       loop->post(decided);
                                   }];
        }
        void post(const UserNotification& notification) override
        {
            mainThread::check();
            if (isUndecided_)
                waiting_.push_back(notification);
            else
                add(notification);
        }
        void removeDelivered(const std::vector<std::string>& identifiers) override
        {
            std::erase_if(waiting_, [&](const UserNotification& each) {
                return std::ranges::find(identifiers, each.identifier) != identifiers.end();
            });
            NSMutableArray<NSString*>* all = [NSMutableArray array];
            for (const auto& identifier : identifiers)
                [all addObject:string(identifier)];
            [center_ removeDeliveredNotificationsWithIdentifiers:all];
        }

    private:
        void postWaiting()
        {
            isUndecided_ = false;
            for (const auto& notification : std::exchange(waiting_, {}))
                add(notification);
        }
        void add(const UserNotification& notification)
        {
            UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
            content.title = string(notification.title);
            content.body = string(notification.body);
            content.categoryIdentifier = string(notification.category);
            content.sound = [UNNotificationSound defaultSound];
            [center_ addNotificationRequest:[UNNotificationRequest requestWithIdentifier:string(notification.identifier)
                                                                                 content:content
                                                                                 trigger:nil]
                      withCompletionHandler:^(NSError* error) {
                          if (error)
                              log(error);
                      }];
        }

        MainLoop& mainLoop_;
        UNUserNotificationCenter* center_;
        /// The system refuses whatever comes before the user has answered.
        bool isUndecided_ = false;
        std::vector<UserNotification> waiting_;
        VespraNotificationDelegate* delegate_;
        Lifetime lifetime_;
    };

    /// For a program outside an application's bundle, which the system's own centre would terminate.
    class NoNotificationCenter final : public UserNotificationCenter {
    public:
        void setCategories(std::vector<NotificationCategory>) override { }
        void requestAuthorization() override { }
        void post(const UserNotification&) override
        {
            if (!std::exchange(hasLogged_, true))
                SystemLog{Brand::appBundleID(), "notifications"}.error("Notification impossible : pas de bundle");
        }
        void removeDelivered(const std::vector<std::string>&) override { }

    private:
        bool hasLogged_ = false;
    };

} // namespace

std::unique_ptr<UserNotificationCenter> makeMacNotificationCenter(MainLoop& mainLoop)
{
    // A program alone has an identifier too, from the property list inside it.
    if ([[[NSBundle mainBundle] bundlePath] hasSuffix:@".app"])
        return std::make_unique<MacNotificationCenter>(mainLoop);
    return std::make_unique<NoNotificationCenter>();
}

} // namespace vespra
