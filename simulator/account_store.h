#pragma once

#include "simulator/account_book.h"
#include "simulator/home_paths.h"

#include <functional>

namespace korvel::sim {

// The file that keeps what a home's account server knows, for the server, the agent and whoever plays the user: each
// look and each change is one step under a lock. A home without the file has the default account.
class AccountStore {
public:
    explicit AccountStore(HomePaths paths) : paths(std::move(paths)) {}

    AccountBook read() const;
    // Lets `event` change the book. When it returns false, nothing of it is kept. False then, or when the file could
    // not be written.
    bool change(const std::function<bool(AccountBook &, qint64 now)> &event) const;

private:
    HomePaths paths;
};

} // namespace korvel::sim
