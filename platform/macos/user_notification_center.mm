#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

#include <QPointer>
#include <optional>
#include <vector>

#include "platform/notification_center.hpp"

@interface VornNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@property(nonatomic) vorn::NotificationCenter* owner;  // Main thread only.
@end

@implementation VornNotificationDelegate
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler {
    // Also while Vorn is in front, when the system would keep it back.
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    const auto identifier = QString::fromNSString(response.notification.request.identifier);
    if ([response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier]) {
        dispatch_async(dispatch_get_main_queue(), ^{
          if (self.owner != nullptr) {
              emit self.owner->activated(identifier);
          }
        });
    }
    completionHandler();
}
@end

namespace vorn {
namespace {

class UserNotificationCenter final : public NotificationCenter {
public:
    UserNotificationCenter() {
        m_delegate.owner = this;
        m_center.delegate = m_delegate;
        // The user may have been in the system's settings meanwhile.
        const auto askAgain = ^(NSNotification*) {
          if (!m_onAnswers.empty()) {
              ask();
          }
        };
        m_observer = [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationDidBecomeActiveNotification
                                                                     object:nil
                                                                      queue:NSOperationQueue.mainQueue
                                                                 usingBlock:askAgain];
    }
    ~UserNotificationCenter() override {
        [NSNotificationCenter.defaultCenter removeObserver:m_observer];
        m_delegate.owner = nullptr;
        m_center.delegate = nil;
    }

    void requestAuthorization(std::function<void(bool granted)> onAnswer) override {
        m_onAnswers.push_back(std::move(onAnswer));
        m_granted.reset();  // So that the newcomer is told, too.
        ask();
    }

    void post(const Notice& notice) override {
        UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
        content.title = notice.title.toNSString();
        content.body = notice.body.toNSString();
        content.sound = UNNotificationSound.defaultSound;
        NSString* identifier = notice.id.toNSString();
        UNNotificationRequest* request = [UNNotificationRequest requestWithIdentifier:identifier
                                                                              content:content
                                                                              trigger:nil];
        [m_center addNotificationRequest:request withCompletionHandler:nil];
    }

    [[nodiscard]] QString problem() const override {
        return m_granted == false ? QString("Notifications cannot be shown: allow them for Vorn in System Settings, "
                                            "Notifications.")
                                  : QString();
    }

private:
    /// The system asks the user the first time only, and then answers as they decided.
    void ask() {
        const QPointer<UserNotificationCenter> self(this);
        const auto tell = ^(BOOL granted, NSError*) {
          dispatch_async(dispatch_get_main_queue(), ^{
            if (self) {
                self->setGranted(granted);
            }
          });
        };
        [m_center requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                                completionHandler:tell];
    }

    void setGranted(bool granted) {
        if (m_granted == granted) {
            return;
        }
        m_granted = granted;
        emit problemChanged();
        for (const auto& onAnswer : std::vector(m_onAnswers)) {
            onAnswer(granted);
        }
    }

    UNUserNotificationCenter* m_center = UNUserNotificationCenter.currentNotificationCenter;
    VornNotificationDelegate* m_delegate = [[VornNotificationDelegate alloc] init];
    id m_observer = nil;
    std::vector<std::function<void(bool)>> m_onAnswers;
    std::optional<bool> m_granted;
};

}  // namespace

std::unique_ptr<NotificationCenter> NotificationCenter::system() {
    if (NSBundle.mainBundle.bundleIdentifier == nil) {
        return nullptr;  // Asking for the system's centre would end the program.
    }
    return std::make_unique<UserNotificationCenter>();
}

}  // namespace vorn
