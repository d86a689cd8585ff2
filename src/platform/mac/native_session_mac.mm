#include "platform/mac/native_session_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>

namespace korvel::native {

unsigned long long heldModifiers() { return [NSEvent modifierFlags]; }

std::string computerName() { return plainText([[NSHost currentHost] localizedName]); }

std::string preferredLanguageLines() {
    return plainText([[NSLocale preferredLanguages] componentsJoinedByString:@"\n"]);
}

} // namespace korvel::native
