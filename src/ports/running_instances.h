#pragma once

#include <QList>

namespace korvel {

/// Other running instances of the tray, each known by its process identifier.
class RunningInstances {
public:
    virtual ~RunningInstances() = default;
    /// Instances of the same user that this one replaces, automation runs left out.
    virtual QList<qint64> others() = 0;
    /// Asks an instance to quit, leaving the agent alone.
    virtual void terminate(qint64 instance) = 0;
    virtual bool isTerminated(qint64 instance) = 0;
    /// Ends an instance that did not follow the request.
    virtual void forceTerminate(qint64 instance) = 0;
};

} // namespace korvel
