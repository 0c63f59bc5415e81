#import <AppKit/AppKit.h>

#include "platform/wake_signal.hpp"

namespace vorn {

namespace {

class WorkspaceWakeSignal final : public WakeSignal {
public:
    WorkspaceWakeSignal() {
        m_observer = [m_center addObserverForName:NSWorkspaceDidWakeNotification
                                           object:nil
                                            queue:NSOperationQueue.mainQueue
                                       usingBlock:^(NSNotification*) {
                                         emit woke();
                                       }];
    }
    ~WorkspaceWakeSignal() override { [m_center removeObserver:m_observer]; }

private:
    NSNotificationCenter* m_center = NSWorkspace.sharedWorkspace.notificationCenter;
    id m_observer = nil;
};

}  // namespace

std::unique_ptr<WakeSignal> WakeSignal::system() {
    return std::make_unique<WorkspaceWakeSignal>();
}

}  // namespace vorn
