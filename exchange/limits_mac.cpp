#include "exchange/limits.h"

#include <sys/resource.h>
#include <unistd.h>

namespace korvel::exchange {

void giveUpRights() {
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
    const int end = ::getdtablesize();
    for (int descriptor = STDERR_FILENO + 1; descriptor < end; ++descriptor)
        ::close(descriptor);
}

} // namespace korvel::exchange
