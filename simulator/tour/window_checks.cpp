#include "simulator/tour/window_checks.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// In points.
constexpr int BESIDE = 2;
constexpr int LOWER = 16; // by half of a title bar, which is not a part of the window

bool isCentred(const QRect &window) {
    const QScreen &screen = *QGuiApplication::primaryScreen();
    const QPoint off = window.center() - screen.availableGeometry().center();
    return std::abs(off.x()) <= BESIDE && off.y() >= -BESIDE && off.y() <= LOWER;
}

QString shownTexts(Tour &tour) {
    const auto window = tour.window();
    if (!window)
        return u"no window shows"_s;
    QStringList names;
    for (const AccessibleElement &element : window->elements)
        names.append(element.name);
    return (window->active ? u"the window shows "_s : u"the window without the keyboard shows "_s) +
           names.join(u" | "_s);
}

} // namespace

QString expectTexts(Tour &tour, const QStringList &texts, const QString &name) {
    const auto holds = [&] {
        const auto window = tour.window();
        return window && window->active &&
               std::ranges::all_of(texts, [&](const QString &text) { return window->find(text).has_value(); });
    };
    if (!tour.waitUntil(holds, NEXT_POLL))
        return shownTexts(tour);
    tour.waitForRest({}); // told before it is painted
    return tour.screenshot(name) ? QString() : u"no screenshot"_s;
}

QString expectWindow(Tour &tour, const QStringList &texts, const QString &name) {
    if (QString wrong = expectTexts(tour, texts, name); !wrong.isEmpty())
        return wrong;
    const QRect area = tour.window().value_or(AccessibleWindow()).area;
    return isCentred(area) ? QString() : u"the window stands at %1, %2"_s.arg(area.left()).arg(area.top());
}

void readWindow(Tour &tour) {
    constexpr auto TAKES_NO_KEY = 1s;
    const auto begin = tour.time();
    tour.waitUntil([&] { return tour.time() > begin + TAKES_NO_KEY; }, NEXT_POLL);
}

QString expectNoWindow(Tour &tour) {
    return tour.waitUntil([&] { return tour.windowArea().isEmpty(); }, NEXT_POLL) ? QString() : shownTexts(tour);
}

QString expectNotice(Tour &tour, const QString &text) {
    return tour.waitUntil([&] { return tour.notice() == text; }, NEXT_POLL)
               ? QString()
               : u"the notice reads "_s + tour.notice().value_or(u"nothing"_s);
}

QString expectEntry(Tour &tour, const QString &title, bool there) {
    const auto matches = [&] {
        const auto menu = tour.panel().menu();
        return !menu.isEmpty() && there == std::ranges::any_of(menu, [&](const PanelMenuEntry &entry) {
                                      return entry.title == title && entry.enabled && entry.visible;
                                  });
    };
    return tour.waitUntil(matches, NEXT_POLL)
               ? QString()
               : (there ? u"the menu does not offer "_s : u"the menu still offers "_s) + title;
}

QString entryThatBegins(Tour &tour, const QString &beginning) {
    for (const PanelMenuEntry &entry : tour.panel().menu()) {
        if (entry.title.startsWith(beginning))
            return entry.title;
    }
    return {};
}

int requestsTo(Tour &tour, const QString &path) {
    const auto requests = tour.home().requests();
    return int(std::ranges::count_if(
        requests, [&](const QJsonObject &request) { return request.value(u"path"_s).toString() == path; }));
}

QString spelled(const QString &code) { return code.split(QString(), Qt::SkipEmptyParts).join(u' '); }

QString otherCode(const QString &code) { return code == "000000"_L1 ? u"000001"_s : u"000000"_s; }

QString firstWrong(std::initializer_list<std::function<QString()>> checks) {
    for (const auto &check : checks) {
        if (QString wrong = check(); !wrong.isEmpty())
            return wrong;
    }
    return {};
}

} // namespace korvel::sim
