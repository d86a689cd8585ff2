// What the .mm files use and GNUstep's headers lack or declare otherwise, for the syntax check on Linux only. Each
// declaration names the page of Apple's documentation (developer.apple.com/documentation/...) that it follows.
#pragma once

#import <AppKit/AppKit.h>
#import <AppKit/NSRunningApplication.h>
#import <AppKit/NSStatusBarButton.h>

// appkit/nsapplication/setactivationpolicy(_:)
@interface NSApplication (Additions)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
@end

// appkit/nsstatusitem/button
@interface NSStatusItem (Additions)
@property(readonly, strong) NSStatusBarButton *button;
@end

// appkit/nsimage/istemplate, appkit/nsimage/accessibilitydescription
@interface NSImage (Additions)
- (void)setTemplate:(BOOL)isTemplate;
@property(copy) NSString *accessibilityDescription;
@end

// appkit/nswindow/stylemask-swift.property
@interface NSWindow (Additions)
- (void)setStyleMask:(NSWindowStyleMask)styleMask;
@end

// foundation/nsappleeventmanager
typedef unsigned int AEEventClass;
typedef unsigned int AEEventID;
@interface NSAppleEventManager (Additions)
+ (NSAppleEventManager *)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end
// coreservices/kcoreeventclass, coreservices/kaereopenapplication
enum : AEEventClass { kCoreEventClass = 'aevt' };
enum : AEEventID { kAEReopenApplication = 'rapp' };

// corefoundation/cfstring, cfurl, cfarray, cfdictionary, cferror; foundation/cfbridgingrelease(_:)
typedef const void *CFTypeRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFURL *CFURLRef;
typedef const struct __CFArray *CFArrayRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef struct __CFError *CFErrorRef;
inline id CFBridgingRelease(CFTypeRef __attribute__((cf_consumed)) object) { return (__bridge_transfer id)object; }

// cfnetwork/cfnetworkcopysystemproxysettings(), cfnetworkcopyproxiesforurl(_:_:),
// cfnetworkcopyproxiesforautoconfigurationscript(_:_:_:), cfnetwork/property-keys
extern "C" CFDictionaryRef CFNetworkCopySystemProxySettings(void);
extern "C" CFArrayRef CFNetworkCopyProxiesForURL(CFURLRef url, CFDictionaryRef proxySettings);
extern "C" CFArrayRef CFNetworkCopyProxiesForAutoConfigurationScript(CFStringRef proxyAutoConfigurationScript,
                                                                     CFURLRef targetURL, CFErrorRef *error);
extern "C" const CFStringRef kCFProxyTypeKey, kCFProxyTypeHTTP, kCFProxyTypeHTTPS, kCFProxyTypeSOCKS,
    kCFProxyHostNameKey, kCFProxyPortNumberKey, kCFProxyAutoConfigurationURLKey;

// os/os_log_default, os/os_log
#define OS_LOG_DEFAULT static_cast<void *>(nullptr)
extern "C" void os_log(void *log, const char *format, ...);
