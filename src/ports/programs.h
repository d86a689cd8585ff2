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

/// Requests programs to stop, from any thread. Copies share one state. Replaces std::stop_token, which some supported
/// standard libraries lack.
class StopToken {
public:
    void requestStop() { flag->store(true); }
    bool stopRequested() const { return flag->load(); }

private:
    std::shared_ptr<std::atomic<bool>> flag = std::make_shared<std::atomic<bool>>(false);
};

/// One run of a program: absolute path, arguments as a list, no shell.
struct ProgramRun {
    enum class Collect { StandardError, StandardOutput };
    /// Own: a separate session, so that the program outlives the tray's job, and an environment reduced to a few
    /// variables that no shell, interpreter or loader evaluates.
    enum class Surroundings { Inherited, Own };

    QString executable;
    QStringList arguments = {};
    QByteArray input = {};      ///< Written to standard input, which is then closed.
    bool keepInputOpen = false; ///< Keeps it open instead: its end shows the program that the tray has exited.
    Surroundings surroundings = Surroundings::Inherited;
    QList<std::pair<QString, QString>> extraEnvironment = {}; ///< Set on top of the environment.
    Collect collect = Collect::StandardError;                 ///< The other stream is discarded.
    std::optional<std::chrono::milliseconds> timeout = {};    ///< Ends the program when it passes; none: no limit.
    std::optional<StopToken> stop = {};                       ///< Ends the program, or prevents its launch.
    /// If set, receives collected output as it arrives, on the thread that runs the program; ProgramResult::output
    /// stays empty.
    std::function<void(const QByteArray &piece)> onOutput = {};
};

struct ProgramResult {
    enum class End { Exited, TimedOut, Stopped }; ///< Why the program ended.

    int status = -1; ///< Exit status; -1 if the program was not launched, was killed, timed out or was stopped.
    bool launched = false;
    QByteArray output;   ///< Collected output. Beyond 512 KiB, only the last part, from the start of a line.
    QString launchError; ///< The system's error message if the launch failed.
    End end = End::Exited;
};

/// Runs a program and waits for its end. Thread-safe; several runs may overlap.
class Programs {
public:
    virtual ~Programs() = default;
    virtual ProgramResult run(const ProgramRun &request) = 0;
};

} // namespace korvel
