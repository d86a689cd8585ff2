#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

#include <chrono>

// The X screen as its user sees and uses it; needs a QGuiApplication and xdotool. All measures are in pixels.
namespace korvel::sim {

// The whole screen, or a part of it.
QImage grabScreen(const QRect &part = {});

// A window as the window manager knows it.
struct ScreenWindow {
    QRect area;
    QString title;
};

// The visible top-level windows of a process; empty when it has none.
QList<ScreenWindow> windowsOf(qint64 pid);

// Where the panel shows its status items; an empty rectangle while it shows none.
QRect statusArea();

// The process that draws the status items, to which the menus belong that the panel opens; 0 when none does.
qint64 statusAreaProcess();

// Moves the pointer there; the receiver of the motion has not yet acted on it when this returns.
void movePointer(QPoint to);
// A click of a mouse button (1 left, 3 right) where the pointer is.
void clickButton(int button);
// A key by its X name, such as "Escape".
void pressKey(const QString &name);
// Presses a key and leaves it down, and lets it go.
void holdKey(const QString &name);
void releaseKey(const QString &name);
// A text, key by key.
void typeText(const QString &text, std::chrono::milliseconds betweenKeys = std::chrono::milliseconds(12));

} // namespace korvel::sim
