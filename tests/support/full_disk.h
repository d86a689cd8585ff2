#pragma once

#include <csignal>
#include <sys/resource.h>

namespace korvel::test {

/// This process may use no more than `most` of a resource while this lives.
class LoweredLimit {
public:
    using Resource = decltype(RLIMIT_FSIZE); // an enumeration or a number, by the system
    LoweredLimit(Resource r, rlim_t most) : resource(r) {
        ::getrlimit(resource, &before);
        rlimit limit = before;
        limit.rlim_cur = most;
        ::setrlimit(resource, &limit);
    }
    ~LoweredLimit() { ::setrlimit(resource, &before); }

private:
    const Resource resource;
    rlimit before{};
};

/// Files do not grow past `bytes`, as on a full disk.
struct FullDisk : LoweredLimit {
    explicit FullDisk(rlim_t bytes) : LoweredLimit(RLIMIT_FSIZE, bytes) { std::signal(SIGXFSZ, SIG_IGN); }
};

} // namespace korvel::test
