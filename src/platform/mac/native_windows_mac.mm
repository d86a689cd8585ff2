#include "platform/mac/native_windows_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>

// Private API. AppKit calls it for non-activating panels, but only on creation, and Qt creates this panel.
@interface NSWindow (KorvelActivation)
- (void)_setPreventsActivation:(BOOL)prevents;
@end

namespace korvel::native {

namespace {
NSWindow *windowOf(void *nsView) { return ((__bridge NSView *)nsView).window; }
} // namespace

void makeNotice(void *nsView) {
    NSWindow *window = windowOf(nsView);
    window.styleMask = NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel;
    window.level = NSStatusWindowLevel;
    window.hidesOnDeactivate = NO;
    window.hasShadow = YES;
    window.canHide = NO;
}

bool canPreventActivation(void *nsView) {
    return [windowOf(nsView) respondsToSelector:@selector(_setPreventsActivation:)];
}

void preventActivation(void *nsView) { [windowOf(nsView) _setPreventsActivation:YES]; }

void makeFloating(void *nsView) {
    NSWindow *window = windowOf(nsView);
    window.level = NSFloatingWindowLevel;
    window.hidesOnDeactivate = NO;
}

void makeKeyAndOrderFront(void *nsView) { [windowOf(nsView) makeKeyAndOrderFront:nil]; }

void orderFrontRegardless(void *nsView) {
    [NSApp unhideWithoutActivation];
    [windowOf(nsView) orderFrontRegardless];
}

Point middleOfMainScreen() {
    const NSRect screen = NSScreen.mainScreen.frame;
    NSScreen *first = NSScreen.screens.firstObject;
    return {NSMidX(screen), NSMaxY(first.frame) - NSMidY(screen)};
}

void announce(const std::string &text) {
    NSAccessibilityPostNotificationWithUserInfo(
        NSApp, NSAccessibilityAnnouncementRequestedNotification, @{
            NSAccessibilityAnnouncementKey : systemText(text),
            NSAccessibilityPriorityKey : @(NSAccessibilityPriorityHigh)
        });
}

} // namespace korvel::native
