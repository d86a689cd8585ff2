#include "simulator/tour/window_controls.h"

#include "simulator/desktop/screen.h"
#include "simulator/tour/window_checks.h"

#include <QGuiApplication>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

std::optional<AccessibleElement> control(Tour &tour, const QString &role, const QString &name) {
    const auto window = tour.window();
    return window ? window->find(role, name) : std::nullopt;
}

// Waits until the control is there and `holds` for it.
bool waitFor(Tour &tour, const QString &role, const QString &name,
             const std::function<bool(const AccessibleElement &)> &holds) {
    const auto there = [&] {
        const auto now = control(tour, role, name);
        return now && holds(*now);
    };
    return tour.waitUntil(there, NEXT_POLL);
}

} // namespace

QString clickControl(Tour &tour, const QString &role, const QString &name) {
    if (QString wrong = expectEnabled(tour, role, name, true); !wrong.isEmpty())
        return wrong;
    const QPointF middle = control(tour, role, name).value_or(AccessibleElement()).area.center();
    movePointer((middle * QGuiApplication::primaryScreen()->devicePixelRatio()).toPoint());
    clickButton(1);
    return {};
}

QString fillIn(Tour &tour, const QString &role, const QString &name, const QString &text) {
    QString wrong =
        firstWrong({[&] { return clickControl(tour, role, name); }, [&] { return expectFocus(tour, role, name); }});
    if (!wrong.isEmpty())
        return wrong;
    pressKey(u"ctrl+a"_s);
    typeText(text);
    if (role == role::PASSWORD) // a reader is told nothing of it
        return {};
    return waitFor(tour, role, name, [&](const AccessibleElement &now) { return now.text == text; })
               ? QString()
               : u"the field %1 holds %2"_s.arg(name, control(tour, role, name).value_or(AccessibleElement()).text);
}

QString expectFocus(Tour &tour, const QString &role, const QString &name) {
    if (waitFor(tour, role, name, [](const AccessibleElement &now) { return now.focused; }))
        return {};
    const auto window = tour.window();
    const auto focus = window ? window->focus() : std::nullopt;
    return u"the keyboard is with %1, not with %2"_s.arg(focus ? focus->name : u"nothing"_s, name);
}

QString expectEnabled(Tour &tour, const QString &role, const QString &name, bool enabled) {
    return waitFor(tour, role, name, [enabled](const AccessibleElement &now) { return now.enabled == enabled; })
               ? QString()
               : u"the %1 %2 %3"_s.arg(role, name, enabled ? u"cannot be used"_s : u"can still be used"_s);
}

} // namespace korvel::sim
