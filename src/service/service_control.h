#pragma once

#include <QString>

namespace korvel {

/// What the tray asks of the service manager, for the user's own jobs. Every operation blocks, may be called on any
/// thread, and gives whether the command succeeded.
class ServiceControl {
public:
    virtual ~ServiceControl() = default;
    virtual bool print(const QString &label) = 0; ///< Whether the job is loaded.
    virtual bool bootstrap(const QString &jobFile) = 0;
    virtual bool bootout(const QString &label) = 0;
    virtual bool enable(const QString &label) = 0;
    virtual bool disable(const QString &label) = 0;
    virtual bool kickstart(const QString &label) = 0; ///< Kills a running instance and starts the job again.
};

} // namespace korvel
