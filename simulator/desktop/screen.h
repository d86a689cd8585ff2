#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

#include <chrono>

// The X screen as its user sees and uses it. Needs a QGuiApplication and xdotool. All measures are in pixels.
namespace korvel::sim {

// Captures the whole screen, or a part of it.
QImage grabScreen(const QRect &part = {});

// A window as the window manager knows it.
struct ScreenWindow {
    QRect area;
    QString title;
};

// The visible top-level windows of a process.
QList<ScreenWindow> windowsOf(qint64 pid);

// The area of the panel's status items; empty if it shows none.
QRect statusArea();

// The process that draws the status items and owns the panel's menus; 0 if there is none.
qint64 statusAreaProcess();

// Moves the pointer. The window below may not have processed the motion when this returns.
void movePointer(QPoint to);
// Clicks a mouse button (1 left, 3 right) at the pointer.
void clickButton(int button);
// Presses and releases a key by its X name, such as "Escape".
void pressKey(const QString &name);
// Types a text.
void typeText(const QString &text);

} // namespace korvel::sim
