#include "platform/mac/native_session_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>
#include <os/log.h>

namespace korvel::native {

void writeSystemLog(const std::string &line) { os_log(OS_LOG_DEFAULT, "%{public}s", line.c_str()); }

unsigned long long heldModifiers() { return [NSEvent modifierFlags]; }

std::string computerName() { return plainText([[NSHost currentHost] localizedName]); }

std::string preferredLanguageLines() {
    return plainText([[NSLocale preferredLanguages] componentsJoinedByString:@"\n"]);
}

} // namespace korvel::native
