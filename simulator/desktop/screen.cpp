#include "simulator/desktop/screen.h"

#include <QGuiApplication>
#include <QMap>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int TOOL_WITHIN_MS = 5000;

// Window class of the panel's process for status items.
const auto STATUS_AREA = u"wrapper-2.0"_s;
constexpr int SMALLEST_STATUS_AREA = 16;

// The output of xdotool; empty on failure.
QString xdotool(const QStringList &arguments) {
    QProcess tool;
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(u"xdotool"_s, arguments, QIODevice::ReadOnly);
    if (!tool.waitForFinished(TOOL_WITHIN_MS))
        return {};
    return QString::fromUtf8(tool.readAllStandardOutput());
}

// Parses the output of `xdotool getwindowgeometry --shell`: lines NAME=VALUE, WINDOW first.
QList<std::pair<QString, QRect>> readWindows(const QString &printed) {
    QList<std::pair<QString, QRect>> windows;
    for (const QString &line : printed.split(u'\n', Qt::SkipEmptyParts)) {
        const QString name = line.section(u'=', 0, 0);
        const int value = line.section(u'=', 1).toInt();
        if (name == "WINDOW"_L1)
            windows.append({line.section(u'=', 1), QRect()});
        else if (windows.isEmpty())
            continue;
        else if (name == "X"_L1)
            windows.last().second.moveLeft(value);
        else if (name == "Y"_L1)
            windows.last().second.moveTop(value);
        else if (name == "WIDTH"_L1)
            windows.last().second.setWidth(value);
        else if (name == "HEIGHT"_L1)
            windows.last().second.setHeight(value);
    }
    return windows;
}

std::pair<QString, QRect> statusAreaWindow() {
    const auto found = readWindows(xdotool(
        {u"search"_s, u"--onlyvisible"_s, u"--class"_s, STATUS_AREA, u"getwindowgeometry"_s, u"--shell"_s, u"%@"_s}));
    for (const auto &window : found) {
        // Its other windows are helpers of a few pixels, and menus below the panel.
        if (window.second.width() >= SMALLEST_STATUS_AREA && window.second.top() == 0)
            return window;
    }
    return {};
}

} // namespace

QImage grabScreen(const QRect &part) {
    const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    return part.isNull() ? screen : screen.copy(part);
}

QList<ScreenWindow> windowsOf(qint64 pid) {
    QList<ScreenWindow> windows;
    const auto found =
        readWindows(xdotool({u"search"_s, u"--all"_s, u"--onlyvisible"_s, u"--pid"_s, QString::number(pid), u"--name"_s,
                             u".*"_s, u"getwindowgeometry"_s, u"--shell"_s, u"%@"_s}));
    for (const auto &[id, area] : found)
        windows.append({area, xdotool({u"getwindowname"_s, id}).trimmed()});
    return windows;
}

QRect statusArea() { return statusAreaWindow().second; }

qint64 statusAreaProcess() {
    const QString window = statusAreaWindow().first;
    return window.isEmpty() ? 0 : xdotool({u"getwindowpid"_s, window}).trimmed().toLongLong();
}

void movePointer(QPoint to) { xdotool({u"mousemove"_s, QString::number(to.x()), QString::number(to.y())}); }

void clickButton(int button) { xdotool({u"click"_s, QString::number(button)}); }

void pressKey(const QString &name) { xdotool({u"key"_s, name}); }

void typeText(const QString &text) { xdotool({u"type"_s, text}); }

} // namespace korvel::sim
