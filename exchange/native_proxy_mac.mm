#include "exchange/native_proxy_mac.h"

#include "platform/mac/native_text_mac.h"

#import <CFNetwork/CFNetwork.h>
#import <Foundation/Foundation.h>

namespace korvel::native {

namespace {

NSURL *urlOf(const std::string &url) { return [NSURL URLWithString:systemText(url)]; }

Proxy firstOf(NSArray *proxies) {
    NSDictionary *first = [proxies firstObject];
    NSString *type = [first objectForKey:(__bridge NSString *)kCFProxyTypeKey];
    NSArray *http = @[ (__bridge NSString *)kCFProxyTypeHTTP, (__bridge NSString *)kCFProxyTypeHTTPS ];
    Proxy proxy;
    proxy.isHttp = [http containsObject:type];
    proxy.isSocks = [type isEqualToString:(__bridge NSString *)kCFProxyTypeSOCKS];
    proxy.host = plainText([first objectForKey:(__bridge NSString *)kCFProxyHostNameKey]);
    proxy.port = [[first objectForKey:(__bridge NSString *)kCFProxyPortNumberKey] intValue];
    NSURL *script = [first objectForKey:(__bridge NSString *)kCFProxyAutoConfigurationURLKey];
    proxy.script = plainText([script absoluteString]);
    return proxy;
}

} // namespace

Proxy proxyFor(const std::string &url) {
    NSDictionary *known = CFBridgingRelease(CFNetworkCopySystemProxySettings());
    NSDictionary *settings = [NSDictionary dictionaryWithDictionary:known]; // empty if there are no settings
    return firstOf(CFBridgingRelease(
        CFNetworkCopyProxiesForURL((__bridge CFURLRef)urlOf(url), (__bridge CFDictionaryRef)settings)));
}

Proxy proxyByScript(const std::string &script, const std::string &url) {
    return firstOf(CFBridgingRelease(CFNetworkCopyProxiesForAutoConfigurationScript(
        (__bridge CFStringRef)systemText(script), (__bridge CFURLRef)urlOf(url), nullptr)));
}

std::string textAt(const std::string &url) {
    return plainText([NSString stringWithContentsOfURL:urlOf(url) encoding:NSUTF8StringEncoding error:nullptr]);
}

} // namespace korvel::native
