#include "platform/native_windows_mac.h"

#import <AppKit/AppKit.h>

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
}

void makeFloating(void *nsView) {
    NSWindow *window = windowOf(nsView);
    window.level = NSFloatingWindowLevel;
    window.hidesOnDeactivate = NO;
}

void makeKeyAndOrderFront(void *nsView) { [windowOf(nsView) makeKeyAndOrderFront:nil]; }

void orderFrontRegardless(void *nsView) { [windowOf(nsView) orderFrontRegardless]; }

} // namespace korvel::native
