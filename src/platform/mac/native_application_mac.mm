#include "platform/mac/native_application_mac.h"

#import <AppKit/AppKit.h>
#include <utility>

@interface KorvelReopenHandler : NSObject {
@public
    std::function<void()> reopened;
}
- (void)applicationDidFinishLaunching:(NSNotification *)notification;
- (void)handleReopen:(NSAppleEventDescriptor *)event withReplyEvent:(NSAppleEventDescriptor *)reply;
@end

@implementation KorvelReopenHandler

// Not earlier: NSApplication installs its own handlers during launch.
- (void)applicationDidFinishLaunching:(NSNotification *)notification {
    [[NSAppleEventManager sharedAppleEventManager] setEventHandler:self
                                                       andSelector:@selector(handleReopen:withReplyEvent:)
                                                     forEventClass:kCoreEventClass
                                                        andEventID:kAEReopenApplication];
}

- (void)handleReopen:(NSAppleEventDescriptor *)event withReplyEvent:(NSAppleEventDescriptor *)reply {
    reopened();
}

@end

namespace korvel::native {

void becomeAccessory() { [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory]; }

void activateApplication() {
    [NSApp unhideWithoutActivation];
    [NSApp activateIgnoringOtherApps:YES];
}

void hideApplication() { [NSApp hide:nil]; }

struct ReopenListener::Native {
    KorvelReopenHandler *handler;
};

ReopenListener::ReopenListener(std::function<void()> reopened)
    : native(std::make_unique<Native>(Native{[[KorvelReopenHandler alloc] init]})) {
    native->handler->reopened = std::move(reopened);
    [[NSNotificationCenter defaultCenter] addObserver:native->handler
                                             selector:@selector(applicationDidFinishLaunching:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
}

ReopenListener::~ReopenListener() {
    [[NSNotificationCenter defaultCenter] removeObserver:native->handler];
    [[NSAppleEventManager sharedAppleEventManager] removeEventHandlerForEventClass:kCoreEventClass
                                                                        andEventID:kAEReopenApplication];
}

} // namespace korvel::native
