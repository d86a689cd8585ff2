// What the .mm files use and GNUstep's headers lack or declare otherwise, for the check on Linux only. Each
// declaration names the page of Apple's documentation (developer.apple.com/documentation/...) that it follows.
#pragma once

#import <AppKit/AppKit.h>
#import <AppKit/NSRunningApplication.h>
#import <AppKit/NSStatusBarButton.h>

@interface NSApplication (Additions) // appkit/nsapplication/setactivationpolicy(_:)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
@end

@interface NSStatusItem (Additions) // appkit/nsstatusitem/button
@property(readonly, strong) NSStatusBarButton *button;
@end

@interface NSImage (Additions) // appkit/nsimage/istemplate, appkit/nsimage/accessibilitydescription
- (void)setTemplate:(BOOL)isTemplate;
@property(copy) NSString *accessibilityDescription;
@end

@interface NSWindow (Additions) // appkit/nswindow/stylemask-swift.property
- (void)setStyleMask:(NSWindowStyleMask)styleMask;
@end

typedef unsigned int AEEventClass;
typedef unsigned int AEEventID;
@interface NSAppleEventManager (Additions) // foundation/nsappleeventmanager
+ (NSAppleEventManager *)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end
enum : AEEventClass { kCoreEventClass = 'aevt' };   // coreservices/kcoreeventclass
enum : AEEventID { kAEReopenApplication = 'rapp' }; // coreservices/kaereopenapplication

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
