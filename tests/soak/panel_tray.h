#pragma once

#include "journey/journey.h"
#include "simulator/desktop/panel_probe.h"

#include <QProcess>
#include <csignal>
#include <memory>

namespace korvel::test {

/// The tray program in the panel of a desktop.
struct PanelTray : Journey {
    static constexpr auto SOON = std::chrono::seconds(20);

    const QString program = home.assembleBundle(trayProgram());
    sim::PanelProbe panel;
    std::unique_ptr<QProcess> process;

    void TearDown() override {
        if (process)
            stop(SIGKILL);
    }
    void start() {
        process = std::make_unique<QProcess>();
        QProcessEnvironment env = home.environment();
        env.insert(QStringLiteral("LANGUAGE"), QStringLiteral("en"));
        process->setProcessEnvironment(env);
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->start(program, {});
        ASSERT_TRUE(panel.waitForItem(SOON, process->processId()));
    }
    /// Sends the program a signal, waits for its end, and gives what it printed.
    QByteArray stop(int signal) {
        ::kill(static_cast<pid_t>(process->processId()), signal);
        EXPECT_TRUE(process->waitForFinished(20000));
        return process->readAll();
    }
    /// Asks the program to end, which it does with success and without a word of a sanitizer.
    void end() {
        const QByteArray output = stop(SIGTERM);
        EXPECT_EQ(process->exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process->exitCode(), 0);
        EXPECT_FALSE(output.contains("Sanitizer") || output.contains("runtime error")) << output.constData();
        process.reset();
    }
    /// The menu's entry that begins so, once it can be chosen.
    QString entry(const QString &beginning, std::chrono::milliseconds within = SOON) {
        QString found;
        panel.waitUntil(
            [&] {
                for (const sim::PanelMenuEntry &e : panel.menu())
                    if (e.enabled && e.title.startsWith(beginning))
                        found = e.title;
                return !found.isEmpty();
            },
            within);
        return found;
    }
    bool lineIs(const QString &line, std::chrono::milliseconds within = SOON) {
        const bool shown = panel.waitUntil([&] { return panel.statusLine() == line; }, within);
        EXPECT_TRUE(shown) << panel.statusLine().toStdString() << ", not " << line.toStdString();
        return shown;
    }
};

} // namespace korvel::test
