#pragma once

#include "ports/running_instances.h"

#include <QString>
#include <map>
#include <utility>

namespace korvel {

/// Instances found in /proc: processes of the same user, program name and HOME. A process descriptor (pidfd) holds each
/// one, so that a signal never reaches another process with a recycled number.
///
/// Instances that start at the same time take turns, from others() until this object is destroyed. Each ends only
/// instances that finished their turn. So they cannot end each other, and the last one stays. The turn is a lock on a
/// file in a private folder, so that other users cannot block a start.
class RunningInstancesLinux final : public RunningInstances {
public:
    explicit RunningInstancesLinux(QString lockedFile) : turnFile(std::move(lockedFile)) {}
    RunningInstancesLinux(const RunningInstancesLinux &) = delete;
    RunningInstancesLinux &operator=(const RunningInstancesLinux &) = delete;
    ~RunningInstancesLinux() override;

    QList<qint64> others() override;
    void terminate(qint64 instance) override;
    bool isTerminated(qint64 instance) override;
    void forceTerminate(qint64 instance) override;

private:
    void takeTurn();

    const QString turnFile; ///< In a private folder of this user.
    int turn = -1;          ///< Descriptor of the locked file; the system releases the lock when the process ends.
    bool hadTurn = false;
    std::map<qint64, int> descriptors;
};

} // namespace korvel
