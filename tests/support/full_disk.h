#pragma once

#include <csignal>
#include <sys/resource.h>

namespace korvel::test {

/// Files may not grow past `bytes` while this lives, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before{};
};

} // namespace korvel::test
