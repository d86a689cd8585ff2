#include "exchange/limits.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace korvel::exchange {

void giveUpRights() {
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
}

} // namespace korvel::exchange
