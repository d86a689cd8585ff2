#pragma once

#include <QList>

namespace korvel {

/// Other running instances of the tray, identified by process identifier.
class RunningInstances {
public:
    virtual ~RunningInstances() = default;
    /// Instances of the same user that this one replaces; automation runs are excluded.
    virtual QList<qint64> others() = 0;
    /// Sends a quit request to an instance. The agent keeps running.
    virtual void terminate(qint64 instance) = 0;
    virtual bool isTerminated(qint64 instance) = 0;
    /// Kills an instance that ignores terminate().
    virtual void forceTerminate(qint64 instance) = 0;
};

} // namespace korvel
