#pragma once

#include "simulator/desktop/accessible.h"
#include "simulator/desktop/panel_probe.h"
#include "simulator/home/simulated_home.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRect>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

namespace korvel::sim {

/// Whether a window is right below the panel, like menus and notices, and unlike other windows.
bool hangsFromPanel(const QRect &window);

/// The failure of a step.
struct StepFailed {
    QString what;
};

/// Ends the step unless `holds`.
inline void expect(bool holds, const QString &otherwise) {
    if (!holds)
        throw StepFailed{otherwise};
}

struct TourOptions {
    QString trayProgram;
    QString homeDirectory;
    QString outputDirectory; ///< for screenshots and the tray's log
};

/// A tray on the desktop with a simulated home, for the steps of the tour. Prints each change of the status line with
/// the seconds since the tray's start. Destruction ends all processes of the home.
class Tour {
public:
    explicit Tour(TourOptions options);
    ~Tour();
    Tour(const Tour &) = delete;
    Tour &operator=(const Tour &) = delete;

    SimulatedHome &home() { return simulated; }
    PanelProbe &panel() { return probe; }
    QProcess &tray() { return trayProcess; }

    /// Starts the tray from a bundle in the home and waits for its status item.
    void startTray();
    /// Time since the tray was started.
    std::chrono::milliseconds time() const { return std::chrono::milliseconds(clock.elapsed()); }
    /// The status line as last reported to the panel.
    QString statusLine() const { return line; }

    /// Runs the event loop until `condition` holds. False on timeout.
    bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds within);

    /// The text of the visible notice once it is painted; none without one.
    std::optional<QString> notice() const;
    /// The pairing window or alert as assistive technology sees it; none if none shows.
    std::optional<AccessibleWindow> window();
    /// The area of that window on the screen in pixels, frame excluded; empty if none shows.
    QRect windowArea() const;

    /// Waits until a part of the screen no longer changes, as after a fade. False on timeout.
    bool waitForRest(const QRect &part);
    /// Waits until the panel has painted the status item.
    bool waitForItemOnScreen();
    /// Moves the pointer to the status item and waits for the panel's highlight. False on timeout.
    bool pointAtItem();
    /// Saves the screen under that name. False on failure.
    bool screenshot(const QString &name);

private:
    void readLine();

    TourOptions options;
    SimulatedHome simulated;
    PanelProbe probe;
    AccessibleReader reader;
    QProcess trayProcess;
    QElapsedTimer clock;
    QString line;
    int screenshots = 0;
};

} // namespace korvel::sim
