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

/// Whether a window of the screen stands right below the panel, as menus and notices do and other windows do not.
bool hangsFromPanel(const QRect &window);

/// What a step did not show as it should.
struct StepFailed {
    QString what;
};

/// Ends the step unless `holds`.
inline void expect(bool holds, const QString &otherwise) {
    if (!holds)
        throw StepFailed{otherwise};
}

/// What the tour is started with.
struct TourOptions {
    QString trayProgram;
    QString homeDirectory;
    QString outputDirectory; ///< for the screenshots and the tray's log
};

/// A tray on the desktop with a simulated home: what every step of the tour looks at and acts on. Prints each status
/// line as it changes, with the seconds since the tray was started. Destruction leaves no process of the home behind.
class Tour {
public:
    explicit Tour(TourOptions options);
    ~Tour();
    Tour(const Tour &) = delete;
    Tour &operator=(const Tour &) = delete;

    SimulatedHome &home() { return simulated; }
    PanelProbe &panel() { return probe; }
    QProcess &tray() { return trayProcess; }

    /// Starts the tray out of a bundle in the home and waits for its status item.
    void startTray();
    /// Time since the tray was started.
    std::chrono::milliseconds time() const { return std::chrono::milliseconds(clock.elapsed()); }
    /// The status line as the panel was last told it.
    QString statusLine() const { return line; }

    /// Runs the event loop until `condition` holds; false when it did not come to hold in time.
    bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds within);

    /// The text of the notice on the screen, once it is painted; nothing while there is none.
    std::optional<QString> notice() const;
    /// The pairing window or alert as assistive technology is told of it; nothing while none shows.
    std::optional<AccessibleWindow> window();
    /// The same window's area on the screen in pixels, frame excluded; empty while none shows.
    QRect windowArea() const;

    /// Waits until a part of the screen has not changed for a while, as after a fade. False if it never rests.
    bool waitForRest(const QRect &part);
    /// Waits until the panel has painted the status item.
    bool waitForItemOnScreen();
    /// Moves the pointer to the status item and waits until the panel shows that it is there. False if it never does.
    bool pointAtItem();
    /// Saves the screen under that name. False when it cannot be saved.
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
