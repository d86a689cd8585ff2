#pragma once

#include "ports/running_instances.h"

#include <QString>
#include <map>
#include <utility>

namespace korvel {

/// Instances found in /proc: the same user's processes of the same program name with the same HOME. Each is held by a
/// process descriptor, so that a signal never reaches another process that got its number.
///
/// Instances that start together take turns, from others() to the end of this object's life, and end only instances
/// that have had their turn: so they cannot end each other, and the one whose turn comes last stays. The turn is a lock
/// on a file that nobody else can open, so that no other user can hold up a start.
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

    const QString turnFile; ///< In a folder of this user.
    int turn = -1;          ///< The file, locked; the system unlocks it with the process.
    bool hadTurn = false;
    std::map<qint64, int> descriptors;
};

} // namespace korvel
