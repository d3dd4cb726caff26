#pragma once

#import <Foundation/Foundation.h>

#include <functional>

namespace vespra {

/// A registration with a notification centre, for as long as it lives; delivered on the main queue. Only notifications
/// of `object` count, if there is one.
class NotificationObserver {
public:
    NotificationObserver(
        NSNotificationCenter* center, NSNotificationName name, std::function<void()> onNotification, id object = nil)
        : center_{center}
        , token_{[center addObserverForName:name
                                     object:object
                                      queue:[NSOperationQueue mainQueue]
                                 usingBlock:^(NSNotification*) {
                                     onNotification();
                                 }]}
    {
    }
    ~NotificationObserver() { [center_ removeObserver:token_]; }
    NotificationObserver(const NotificationObserver&) = delete;
    NotificationObserver& operator=(const NotificationObserver&) = delete;

private:
    NSNotificationCenter* center_;
    id token_;
};

} // namespace vespra
