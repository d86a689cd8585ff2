#pragma once

#include "platform/running_copies.h"

#include <map>

namespace korvel {

/// Copies found in /proc: the same user's processes of the same program name with the same HOME. Each is held by a
/// process descriptor, so that a signal never reaches another process that got its number.
class RunningCopiesLinux final : public RunningCopies {
public:
    RunningCopiesLinux() = default;
    RunningCopiesLinux(const RunningCopiesLinux &) = delete;
    RunningCopiesLinux &operator=(const RunningCopiesLinux &) = delete;
    ~RunningCopiesLinux() override;

    QList<qint64> others() override;
    void terminate(qint64 copy) override;
    bool isTerminated(qint64 copy) override;
    void forceTerminate(qint64 copy) override;

private:
    std::map<qint64, int> descriptors;
};

} // namespace korvel
