#pragma once

#include <QString>

namespace korvel {

/// Result of a service manager command.
enum class ServiceResult {
    Unknown, ///< No exit status: the command could not run or timed out.
    Succeeded,
    Failed,
};

/// Controls the user's own jobs in the service manager. All operations block. Thread-safe.
class ServiceControl {
public:
    virtual ~ServiceControl() = default;
    virtual ServiceResult print(const QString &label) = 0; ///< Fails if the job is not loaded.
    virtual ServiceResult bootstrap(const QString &jobFile) = 0;
    virtual ServiceResult bootout(const QString &label) = 0;
    virtual ServiceResult enable(const QString &label) = 0;
    virtual ServiceResult disable(const QString &label) = 0;
    /// Restarts the job, killing a running process.
    virtual ServiceResult kickstart(const QString &label) = 0;
};

} // namespace korvel
