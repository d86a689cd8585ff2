#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>
#include <utility>

namespace korvel {

/// One run of a program: absolute path, arguments as a list, never a shell.
struct ProgramRun {
    enum class Collect { StandardError, StandardOutput };
    /// Own: a session of its own, which the end of the tray's job leaves alone, and an environment of the few variables
    /// that no shell, interpreter or loader obeys.
    enum class Surroundings { Inherited, Own };

    QString executable;
    QStringList arguments = {};
    QByteArray input = {}; ///< Written to standard input, which is then closed.
    Surroundings surroundings = Surroundings::Inherited;
    QList<std::pair<QString, QString>> extraEnvironment = {}; ///< Set on top of the environment.
    Collect collect = Collect::StandardError;                 ///< The other one goes to the null device.
    std::optional<std::chrono::milliseconds> timeout = {};    ///< After it the program is asked to end; none: no limit.

    bool operator==(const ProgramRun &) const = default;
};

struct ProgramResult {
    int status = -1; ///< Exit status; -1 when the program could not be launched or was killed.
    bool launched = false;
    QByteArray output;   ///< What was collected; when it is long, its last 8 MiB from a line's beginning on.
    QString launchError; ///< Why launching failed, in the system's words.
};

/// Runs programs to their end. Blocks; may be called on any thread, several at once.
class Programs {
public:
    virtual ~Programs() = default;
    virtual ProgramResult run(const ProgramRun &request) = 0;
};

} // namespace korvel
