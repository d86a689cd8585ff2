#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace korvel {

/// Asks runs of programs to end, from any thread. Copies are one and the same; std::stop_token is missing in some of
/// the standard libraries that this is built with.
class StopToken {
public:
    void requestStop() { flag->store(true); }
    bool stopRequested() const { return flag->load(); }

private:
    std::shared_ptr<std::atomic<bool>> flag = std::make_shared<std::atomic<bool>>(false);
};

/// One run of a program: absolute path, arguments as a list, never a shell.
struct ProgramRun {
    enum class Collect { StandardError, StandardOutput };
    /// Own: a session of its own, which the end of the tray's job leaves alone, and an environment of the few variables
    /// that no shell, interpreter or loader obeys.
    enum class Surroundings { Inherited, Own };

    QString executable;
    QStringList arguments = {};
    QByteArray input = {};      ///< Written to standard input, which is then closed.
    bool keepInputOpen = false; ///< Instead it stays open, so that its end tells the program that the tray has gone.
    Surroundings surroundings = Surroundings::Inherited;
    QList<std::pair<QString, QString>> extraEnvironment = {}; ///< Set on top of the environment.
    Collect collect = Collect::StandardError;                 ///< The other one goes to the null device.
    std::optional<std::chrono::milliseconds> timeout = {};    ///< After it the program is ended; none: no limit.
    std::optional<StopToken> stop = {};                       ///< Ends the program, or keeps it from being launched.
    /// Where set, gets what is collected, piece by piece as it comes and in place of ProgramResult::output, on the
    /// thread that runs the program.
    std::function<void(const QByteArray &piece)> onOutput = {};
};

struct ProgramResult {
    enum class End { Itself, TimedOut, Stopped }; ///< Who ended the program.

    int status = -1; ///< Exit status; -1 when the program could not be launched, was killed, timed out or was stopped.
    bool launched = false;
    QByteArray output;   ///< What was collected; when it is over 512 KiB, its end from a line's beginning on.
    QString launchError; ///< Why launching failed, in the system's words.
    End end = End::Itself;
};

/// Runs programs to their end. Blocks; may be called on any thread, several at once.
class Programs {
public:
    virtual ~Programs() = default;
    virtual ProgramResult run(const ProgramRun &request) = 0;
};

} // namespace korvel
