#pragma once

#include "simulator/tour/tour.h"

#include <QStringList>

/// Checks and actions of the steps. Each waits for its condition, and throws StepFailed on timeout.
namespace korvel::sim {

/// Time until the next poll has had its effect.
inline constexpr auto NEXT_POLL = std::chrono::milliseconds(4500);

using Within = std::chrono::milliseconds;

void expectLine(Tour &tour, const QString &line, Within within = NEXT_POLL);
/// Expects a window with all these texts and the keyboard focus; takes a screenshot of that name.
void expectTexts(Tour &tour, const QStringList &texts, const QString &name);
/// As above, for a window that has just opened, in the middle of the screen.
void expectWindow(Tour &tour, const QStringList &texts, const QString &name);
void expectNoWindow(Tour &tour);
void expectNotice(Tour &tour, const QString &text, Within within = NEXT_POLL);
void expectNoNotice(Tour &tour, Within within);
/// Expects that the menu has, or has not, an enabled entry of that title.
void expectEntry(Tour &tour, const QString &title, bool there);
/// Expects a number of requests to a path so far.
void expectRequests(Tour &tour, const QString &path, int count);

/// Waits until a window that opened automatically accepts keys.
void readWindow(Tour &tour);
void choose(Tour &tour, const QString &entry);
/// Saves the screen under that name once it no longer changes.
void screenshot(Tour &tour, const QString &name);
void change(Tour &tour, const QJsonObject &patch);

/// The title of the first menu entry with that beginning; empty without one.
QString entryThatBegins(Tour &tour, const QString &beginning);
/// Expects that the entry with that beginning changes, and then disappears.
void expectProgress(Tour &tour, const QString &beginning, Within within);
/// Number of requests to a path so far.
int requestsTo(Tour &tour, const QString &path);
/// The digits separated by spaces, as in the accessible text of a code.
QString spelled(const QString &code);
/// A code that differs from this one.
QString otherCode(const QString &code);

} // namespace korvel::sim
