#pragma once

#include "simulator/agent_config.h"
#include "simulator/encryption.h"
#include "simulator/home_paths.h"

#include <functional>

namespace korvel::sim {

// The file that keeps a home's encryption state, for the agent and for whoever plays the phone: each look and each
// change is one step under a lock, with what time and the scenario brought about since applied first.
class EncryptionStore {
public:
    // `config` tells which sign-in the state belongs to: another one starts it over.
    EncryptionStore(HomePaths paths, AgentConfig config) : paths(std::move(paths)), config(std::move(config)) {}

    // The state as it is now.
    Encryption read() const;
    // Lets `event` change the state. When it returns false, nothing of it is kept. False then, or when the file could
    // not be written.
    bool change(const std::function<bool(Encryption &, const EncryptionRules &, qint64 now)> &event) const;

private:
    HomePaths paths;
    AgentConfig config;
};

} // namespace korvel::sim
