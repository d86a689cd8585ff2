#pragma once

#include "simulator/home/simulated_home.h"

#include <QProcess>

namespace korvel::test {

/// The tray program of this build, and the one that it reaches servers through.
QString trayProgram();
QString exchangeProgram();

/// The tray program in a home, as its user's session starts it; killed with this at the latest.
class TrayProcess final : public QProcess {
public:
    enum class Shown { Nowhere, OnDesktop };
    explicit TrayProcess(sim::SimulatedHome &home, Shown shown = Shown::Nowhere,
                         const QString &language = QStringLiteral("en"));
    ~TrayProcess() override;

    /// Starts it; what it prints on either stream can be read.
    bool begin();
    /// Starts it in an automation mode with `input` to read; its streams are apart.
    void beginAutomation(const QStringList &arguments, const QByteArray &input);
    /// Sends it a signal, waits for its end, and gives what it printed.
    QByteArray stop(int signal);
    /// Asks it to end, which it does with success and without a word of a sanitizer.
    void end();
    bool hasEndedWell() const { return exitStatus() == NormalExit && exitCode() == 0; }

    const QString placed; ///< Where the program lies in the home.
};

} // namespace korvel::test
