#pragma once

#include "journey/journey.h"
#include "simulator/desktop/panel_probe.h"

namespace korvel::test {

/// The tray program in the panel of a desktop.
struct PanelTray : Journey {
    static constexpr auto SOON = std::chrono::seconds(20);

    sim::PanelProbe panel;
    std::unique_ptr<TrayProcess> process;

    /// Lets this time pass, with events.
    void pass(std::chrono::milliseconds time) {
        panel.waitUntil([] { return false; }, time);
    }
    bool soon(const std::function<bool()> &condition) { return panel.waitUntil(condition, SOON); }
    void start() {
        process = std::make_unique<TrayProcess>(home, TrayProcess::Shown::OnDesktop);
        ASSERT_TRUE(process->begin());
        ASSERT_TRUE(panel.waitForItem(SOON, process->processId()));
    }
    void end() {
        process->end();
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
    bool lineIs(const QString &line) {
        const bool shown = soon([&] { return panel.statusLine() == line; });
        EXPECT_TRUE(shown) << panel.statusLine().toStdString() << ", not " << line.toStdString();
        return shown;
    }
};

} // namespace korvel::test
