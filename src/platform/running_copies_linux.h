#pragma once

#include "platform/running_copies.h"

#include <map>

namespace korvel {

/// Copies found in /proc: the same user's processes of the same program name with the same HOME. Each is held by a
/// process descriptor, so that a signal never reaches another process that got its number.
///
/// While one lives, this process bears the name of a starting copy: two that start together must not end each other, so
/// of starting copies only the one that began last ends the others.
class RunningCopiesLinux final : public RunningCopies {
public:
    RunningCopiesLinux();
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
