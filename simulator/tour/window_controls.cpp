#include "simulator/tour/window_controls.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/checks.h"

#include <QGuiApplication>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

std::optional<AccessibleElement> control(Tour &tour, const QString &role, const QString &name) {
    const auto window = tour.window();
    return window ? window->find(role, name) : std::nullopt;
}

/// Waits until the control is there and `holds` for it.
bool waitFor(Tour &tour, const QString &role, const QString &name,
             const std::function<bool(const AccessibleElement &)> &holds) {
    const auto there = [&] {
        const auto now = control(tour, role, name);
        return now && holds(*now);
    };
    return tour.waitUntil(there, NEXT_POLL);
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
    const bool isTyped = role == role::PASSWORD || // a reader is told nothing of it
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

} // namespace korvel::sim
