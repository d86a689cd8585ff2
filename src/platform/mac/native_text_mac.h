#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace korvel::native {

/// Converts an NSString to UTF-8; empty for nil.
inline std::string plainText(NSString *text) {
    NSData *bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return std::string(static_cast<const char *>(bytes.bytes), bytes.length);
}

/// Converts UTF-8 to an NSString.
inline NSString *systemText(const std::string &text) {
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

} // namespace korvel::native
