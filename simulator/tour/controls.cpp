#include "simulator/tour/controls.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/checks.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace korvel::sim {

namespace {

std::optional<AccessibleElement> control(Tour &tour, const QString &role, const QString &name) {
    const auto window = tour.window();
    return window ? window->find(role, name) : std::nullopt;
}

/// Waits until the control exists and `holds` is true for it.
bool waitFor(Tour &tour, const QString &role, const QString &name,
             const std::function<bool(const AccessibleElement &)> &holds) {
    const auto there = [&] {
        const auto now = control(tour, role, name);
        return now && holds(*now);
    };
    return tour.waitUntil(there, NEXT_POLL);
}

constexpr auto MENU_TIMEOUT = 3s;
constexpr int LEFT_BUTTON = 1;
constexpr int RIGHT_BUTTON = 3;

// In points: less than a menu with more than two entries, more than a tool tip or a notice.
constexpr int SMALLEST_MENU = 80;

QList<QRect> menusOf(qint64 pid) {
    const double least = SMALLEST_MENU * QGuiApplication::primaryScreen()->devicePixelRatio();
    QList<QRect> menus;
    for (const ScreenWindow &window : windowsOf(pid))
        if (window.area.height() >= least && hangsFromPanel(window.area))
            menus.append(window.area);
    return menus;
}

/// Opens the menu with a click on the item. It must be a window of process `owner`.
void openWith(Tour &tour, int button, qint64 owner) {
    expect(tour.pointAtItem(), u"the panel does not show the item under the pointer"_s);
    clickButton(button);
    expect(tour.waitUntil([&] { return !menusOf(owner).isEmpty(); }, MENU_TIMEOUT), u"no menu opened"_s);
    tour.waitForRest({}); // a window exists before it is painted
    // The panel may place its own menu anywhere.
    const QList<QRect> own = menusOf(tour.tray().processId());
    expect(std::ranges::none_of(own, [](const QRect &menu) { return menu.intersects(statusArea()); }),
           u"the menu covers the icon"_s);
}

void closeWith(Tour &tour, const QString &key, qint64 owner, const QString &name) {
    expect(tour.screenshot(name), u"no screenshot"_s);
    pressKey(key);
    movePointer(grabScreen().rect().center());
    expect(tour.waitUntil([&] { return menusOf(owner).isEmpty(); }, MENU_TIMEOUT), key + u" does not close it"_s);
}

/// Number of presses of Up until the entry of the open menu is selected. The first one selects the last entry.
int stepsUpTo(Tour &tour, const QString &entry) {
    const auto entries = tour.panel().menu();
    int steps = 0;
    for (auto each = entries.crbegin(); each != entries.crend(); ++each) {
        steps += each->visible && each->enabled && !each->separator ? 1 : 0;
        if (each->title == entry)
            return steps;
    }
    throw StepFailed{u"the menu has no entry "_s + entry};
}

} // namespace

void clickControl(Tour &tour, const QString &role, const QString &name) {
    expectEnabled(tour, role, name, true);
    const QPointF middle = control(tour, role, name).value_or(AccessibleElement()).area.center();
    movePointer((middle * QGuiApplication::primaryScreen()->devicePixelRatio()).toPoint());
    clickButton(1);
}

void fillIn(Tour &tour, const QString &role, const QString &name, const QString &text) {
    clickControl(tour, role, name);
    expectFocus(tour, role, name);
    pressKey(u"ctrl+a"_s);
    typeText(text);
    const bool isTyped = role == role::PASSWORD || // its content is not accessible
                         waitFor(tour, role, name, [&](const AccessibleElement &now) { return now.text == text; });
    expect(isTyped, u"the field %1 does not hold %2"_s.arg(name, text));
}

void expectFocus(Tour &tour, const QString &role, const QString &name) {
    if (!waitFor(tour, role, name, [](const AccessibleElement &now) { return now.focused; }))
        throw StepFailed{u"the keyboard is with %1, not with %2"_s.arg(focusOf(tour).name, name)};
}

void expectEnabled(Tour &tour, const QString &role, const QString &name, bool enabled) {
    expect(waitFor(tour, role, name, [enabled](const AccessibleElement &now) { return now.enabled == enabled; }),
           u"the %1 %2 %3"_s.arg(role, name, enabled ? u"cannot be used"_s : u"can still be used"_s));
}

AccessibleElement focusOf(Tour &tour) {
    const auto window = tour.window();
    return window ? window->focus().value_or(AccessibleElement()) : AccessibleElement();
}

void captureMenu(Tour &tour, const QString &name) {
    openWith(tour, LEFT_BUTTON, tour.tray().processId());
    closeWith(tour, u"Escape"_s, tour.tray().processId(), name);
}

void capturePanelMenu(Tour &tour, const QString &name) {
    openWith(tour, RIGHT_BUTTON, statusAreaProcess());
    closeWith(tour, u"Escape"_s, statusAreaProcess(), name);
}

void chooseByKeyboard(Tour &tour, const QString &entry, const QString &name) {
    openWith(tour, LEFT_BUTTON, tour.tray().processId());
    for (int steps = stepsUpTo(tour, entry); steps > 0; --steps)
        pressKey(u"Up"_s);
    tour.waitForRest({});
    closeWith(tour, u"Return"_s, tour.tray().processId(), name);
}

} // namespace korvel::sim
