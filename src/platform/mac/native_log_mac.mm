#include "platform/mac/native_log_mac.h"

#include <os/log.h>

namespace korvel::native {

void writeSystemLog(const std::string &line) { os_log(OS_LOG_DEFAULT, "%{public}s", line.c_str()); }

} // namespace korvel::native
