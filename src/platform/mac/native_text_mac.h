#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace korvel::native {

/// UTF-8 text of a string; empty for nil.
inline std::string plainText(NSString *text) {
    NSData *bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return std::string(static_cast<const char *>(bytes.bytes), bytes.length);
}

/// A string from UTF-8 text.
inline NSString *systemText(const std::string &text) {
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

} // namespace korvel::native
