#import <AppKit/AppKit.h>

#include "platform/desktop_appearance.hpp"

/// Calls the handler on every change of what `currentLook` reads.
@interface VornAppearanceObserver : NSObject
- (instancetype)initWithHandler:(void (^)(void))handler;
- (void)stop;
@end

@implementation VornAppearanceObserver {
    void (^_handler)(void);
    NSApplication* _application;
}

- (instancetype)initWithHandler:(void (^)(void))handler {
    if ((self = [super init])) {
        _handler = [handler copy];
        _application = NSApp;
        [_application addObserver:self forKeyPath:@"effectiveAppearance" options:0 context:nil];
        [NSWorkspace.sharedWorkspace.notificationCenter
            addObserver:self
               selector:@selector(displayOptionsChanged:)
                   name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                 object:nil];
    }
    return self;
}

- (void)stop {
    [_application removeObserver:self forKeyPath:@"effectiveAppearance"];
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:self];
}

- (void)observeValueForKeyPath:(NSString*)path
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    _handler();
}

- (void)displayOptionsChanged:(NSNotification*)notification {
    _handler();
}

@end

namespace vorn {

namespace {

DesktopAppearance::Look currentLook() {
    NSAppearanceName name = [NSApp.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    return {.isDark = [name isEqualToString:NSAppearanceNameDarkAqua] == YES,
            .highContrast = workspace.accessibilityDisplayShouldIncreaseContrast == YES,
            .reducedMotion = workspace.accessibilityDisplayShouldReduceMotion == YES};
}

class AppKitAppearance : public DesktopAppearance {
public:
    AppKitAppearance() {
        setLook(currentLook());
        m_observer = [[VornAppearanceObserver alloc] initWithHandler:^{
            setLook(currentLook());
        }];
    }
    ~AppKitAppearance() override { [m_observer stop]; }

private:
    VornAppearanceObserver* m_observer = nil;
};

}  // namespace

std::unique_ptr<DesktopAppearance> DesktopAppearance::system() { return std::make_unique<AppKitAppearance>(); }

}  // namespace vorn
