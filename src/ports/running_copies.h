#pragma once

#include <QList>

namespace korvel {

/// Other running copies of the tray, each known by its process identifier.
class RunningCopies {
public:
    virtual ~RunningCopies() = default;
    /// Copies of the same user that this one replaces, automation runs left out.
    virtual QList<qint64> others() = 0;
    /// Asks a copy to quit, leaving the agent alone.
    virtual void terminate(qint64 copy) = 0;
    virtual bool isTerminated(qint64 copy) = 0;
    /// Ends a copy that did not follow the request.
    virtual void forceTerminate(qint64 copy) = 0;
};

} // namespace korvel
