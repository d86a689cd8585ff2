#include "simulator/tour/tour.h"

#include "app/model/wording.h"
#include "simulator/desktop/screen.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <cstdio>
#include <cstdlib>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr auto ITEM_TIMEOUT = 10s;
constexpr auto PANEL_TIMEOUT = 3s;
constexpr int END_WITHIN_MS = 5000;
constexpr int RESTS_AFTER_MS = 150;

/// In points: maximum distance of a notice or a menu from the top edge.
constexpr int BELOW_PANEL = 60;
constexpr int NOTICE_OFF_CENTRE = 4;

/// Title of the pairing window and of alerts.
const auto WINDOW_TITLE = u"Korvel"_s;

/// Whether a colour is that of a notice's background, over any desktop.
bool isDark(QRgb colour) { return qGray(colour) < 80; }

/// Whether an image is more than a plain background.
bool isPainted(const QImage &area) {
    for (int y = 0; y < area.height(); ++y) {
        for (int x = 0; x < area.width(); ++x) {
            if (area.pixel(x, y) != area.pixel(0, 0))
                return true;
        }
    }
    return false;
}

} // namespace

bool hangsFromPanel(const QRect &window) {
    return window.top() > 0 && window.top() < BELOW_PANEL * QGuiApplication::primaryScreen()->devicePixelRatio();
}

Tour::Tour(TourOptions given) : options(std::move(given)), simulated(options.homeDirectory) {
    probe.onChange([this] { readLine(); });
}

Tour::~Tour() {
    probe.onChange({});
    if (trayProcess.state() != QProcess::NotRunning) {
        trayProcess.terminate();
        if (!trayProcess.waitForFinished(END_WITHIN_MS)) {
            trayProcess.kill();
            trayProcess.waitForFinished(END_WITHIN_MS);
        }
    }
    simulated.shutDown();
}

void Tour::startTray() {
    const QString program = simulated.assembleBundle(options.trayProgram);
    expect(!program.isEmpty(), u"no bundle could be made of "_s + options.trayProgram);
    auto environment = simulated.environment();
    environment.insert(u"LANGUAGE"_s, ZH ? u"zh_CN:zh"_s : u"en_US:en"_s);
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s); // as if a screen reader runs
    trayProcess.setProcessEnvironment(environment);
    trayProcess.setStandardOutputFile(QProcess::nullDevice());
    trayProcess.setStandardErrorFile(options.outputDirectory + u"/tray.log"_s, QIODevice::Append);
    trayProcess.start(program, QStringList());
    clock.start();
    expect(trayProcess.waitForStarted(), trayProcess.errorString());
    expect(probe.waitForItem(ITEM_TIMEOUT, trayProcess.processId()), u"no status item was registered"_s);
    readLine();
}

bool Tour::waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds within) {
    return probe.waitUntil(condition, within);
}

std::optional<QString> Tour::notice() const {
    const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    const QImage screen = grabScreen();
    for (const auto &[window, title] : windowsOf(trayProcess.processId())) {
        const bool centred = std::abs(window.center().x() - screen.width() / 2) <= NOTICE_OFF_CENTRE;
        if (centred && hangsFromPanel(window) &&
            isDark(screen.pixel(window.left() + int(8 * scale), window.center().y())))
            return title;
    }
    return std::nullopt;
}

std::optional<AccessibleWindow> Tour::window() {
    for (const AccessibleWindow &window : reader.windows(trayProcess.processId())) {
        if (window.name == WINDOW_TITLE)
            return window;
    }
    return std::nullopt;
}

QRect Tour::windowArea() const {
    for (const auto &[area, title] : windowsOf(trayProcess.processId())) {
        if (title == WINDOW_TITLE && !hangsFromPanel(area))
            return area;
    }
    return {};
}

bool Tour::waitForRest(const QRect &part) {
    QImage last;
    QElapsedTimer unchanged;
    const auto rests = [&] {
        const QImage now = grabScreen(part);
        if (now != std::exchange(last, now))
            unchanged.start();
        return unchanged.hasExpired(RESTS_AFTER_MS);
    };
    return waitUntil(rests, PANEL_TIMEOUT);
}

bool Tour::waitForItemOnScreen() {
    const auto shown = [] {
        const QRect area = statusArea();
        return !area.isEmpty() && isPainted(grabScreen(area));
    };
    return waitUntil(shown, PANEL_TIMEOUT);
}

bool Tour::pointAtItem() {
    movePointer(grabScreen().rect().center());
    if (!waitForItemOnScreen() || !waitForRest(statusArea()))
        return false;
    const QRect area = statusArea();
    const QImage before = grabScreen(area);
    movePointer(area.center());
    return waitUntil([&] { return grabScreen(area) != before; }, PANEL_TIMEOUT);
}

bool Tour::screenshot(const QString &name) {
    const QString number = QString::number(++screenshots).rightJustified(2, u'0');
    return grabScreen().save(options.outputDirectory + u'/' + number + u'-' + name + u".png"_s);
}

/// Called for signals only: panels do not show changes without a signal.
void Tour::readLine() {
    const QString now = probe.statusLine();
    if (now.isEmpty() || now == std::exchange(line, now))
        return;
    std::printf("  %6.2f s  %s\n", std::chrono::duration<double>(time()).count(), qUtf8Printable(now));
    std::fflush(stdout);
}

} // namespace korvel::sim
