#include "simulator/tour/checks.h"

#include <QGuiApplication>
#include <QJsonObject>
#include <QScreen>
#include <QSet>
#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

// Tolerances in points for a centred window.
constexpr int BESIDE = 2;
constexpr int LOWER = 16; // half of a title bar, which the window's area excludes

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

void expectLine(Tour &tour, const QString &line, Within within) {
    expect(tour.waitUntil([&] { return tour.statusLine() == line; }, within), u"the line reads "_s + tour.statusLine());
}

void expectTexts(Tour &tour, const QStringList &texts, const QString &name) {
    const auto holds = [&] {
        const auto window = tour.window();
        return window && window->active &&
               std::ranges::all_of(texts, [&](const QString &text) { return window->find(text).has_value(); });
    };
    if (!tour.waitUntil(holds, NEXT_POLL))
        throw StepFailed{shownTexts(tour)};
    screenshot(tour, name);
}

void expectWindow(Tour &tour, const QStringList &texts, const QString &name) {
    expectTexts(tour, texts, name);
    const QRect area = tour.window().value_or(AccessibleWindow()).area;
    expect(isCentred(area), u"the window stands at %1, %2"_s.arg(area.left()).arg(area.top()));
}

void expectNoWindow(Tour &tour) {
    if (!tour.waitUntil([&] { return tour.windowArea().isEmpty(); }, NEXT_POLL))
        throw StepFailed{shownTexts(tour)};
}

void expectNotice(Tour &tour, const QString &text, Within within) {
    const bool shows = tour.waitUntil([&] { return tour.notice() == text; }, within);
    expect(shows, u"the notice reads "_s + tour.notice().value_or(u"nothing"_s));
}

void expectNoNotice(Tour &tour, Within within) {
    expect(tour.waitUntil([&] { return !tour.notice(); }, within), u"the notice stays"_s);
}

void expectEntry(Tour &tour, const QString &title, bool there) {
    const auto matches = [&] {
        const auto menu = tour.panel().menu();
        return !menu.isEmpty() && there == std::ranges::any_of(menu, [&](const PanelMenuEntry &entry) {
                                      return entry.title == title && entry.enabled && entry.visible;
                                  });
    };
    expect(tour.waitUntil(matches, NEXT_POLL),
           (there ? u"the menu does not offer "_s : u"the menu still offers "_s) + title);
}

void expectRequests(Tour &tour, const QString &path, int count) {
    const int received = requestsTo(tour, path);
    expect(received == count, u"the agent received %1 requests to %2"_s.arg(received).arg(path));
}

void readWindow(Tour &tour) {
    constexpr auto TAKES_NO_KEY = 1s;
    const auto begin = tour.time();
    tour.waitUntil([&] { return tour.time() > begin + TAKES_NO_KEY; }, NEXT_POLL);
}

void choose(Tour &tour, const QString &entry) {
    expect(tour.panel().open() && tour.panel().click(entry), u"the menu has no entry "_s + entry);
}

void screenshot(Tour &tour, const QString &name) {
    tour.waitForRest({});
    expect(tour.screenshot(name), u"no screenshot"_s);
}

void change(Tour &tour, const QJsonObject &patch) {
    expect(tour.home().changeScenario(patch), u"the simulated home could not be changed"_s);
}

QString entryThatBegins(Tour &tour, const QString &beginning) {
    for (const PanelMenuEntry &entry : tour.panel().menu())
        if (entry.title.startsWith(beginning))
            return entry.title;
    return {};
}

void expectProgress(Tour &tour, const QString &beginning, Within within) {
    QSet<QString> seen;
    const auto isOver = [&] {
        const QString now = entryThatBegins(tour, beginning);
        seen.insert(now);
        return now.isEmpty();
    };
    expect(tour.waitUntil(isOver, within), u"it does not end: "_s + beginning);
    expect(seen.size() > 2, u"the percent did not move"_s);
}

int requestsTo(Tour &tour, const QString &path) {
    const auto requests = tour.home().requests();
    return int(std::ranges::count_if(
        requests, [&](const QJsonObject &request) { return request.value("path"_L1).toString() == path; }));
}

QString spelled(const QString &code) { return code.split(QString(), Qt::SkipEmptyParts).join(u' '); }

QString otherCode(const QString &code) { return code == "000000"_L1 ? u"000001"_s : u"000000"_s; }

} // namespace korvel::sim
