#pragma once

#include <QString>

namespace korvel {

/// How a command to the service manager ended.
enum class ServiceResult {
    Unknown, ///< Without a status: it could not be run, or was ended at its time limit.
    Succeeded,
    Failed,
};

/// What the tray asks of the service manager, for the user's own jobs. Every operation blocks and may be called on any
/// thread.
class ServiceControl {
public:
    virtual ~ServiceControl() = default;
    virtual ServiceResult print(const QString &label) = 0; ///< Fails when the job is not loaded.
    virtual ServiceResult bootstrap(const QString &jobFile) = 0;
    virtual ServiceResult bootout(const QString &label) = 0;
    virtual ServiceResult enable(const QString &label) = 0;
    virtual ServiceResult disable(const QString &label) = 0;
    /// Kills a running instance and starts the job again.
    virtual ServiceResult kickstart(const QString &label) = 0;
};

} // namespace korvel
