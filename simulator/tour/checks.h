#pragma once

#include "simulator/tour/tour.h"

#include <QStringList>

/// What the steps look at and act on again and again. Each waits for what it expects, and throws StepFailed when it
/// does not come.
namespace korvel::sim {

/// A poll, and what it starts.
inline constexpr auto NEXT_POLL = std::chrono::milliseconds(4500);

using Within = std::chrono::milliseconds;

void expectLine(Tour &tour, const QString &line, Within within = NEXT_POLL);
/// A window that holds all these texts and the keyboard; takes a screenshot of that name.
void expectTexts(Tour &tour, const QStringList &texts, const QString &name);
/// The same of a window that has just opened, in the middle of the screen.
void expectWindow(Tour &tour, const QStringList &texts, const QString &name);
void expectNoWindow(Tour &tour);
void expectNotice(Tour &tour, const QString &text, Within within = NEXT_POLL);
void expectNoNotice(Tour &tour, Within within);
/// The menu has, or has not, an entry of that title that can be chosen.
void expectEntry(Tour &tour, const QString &title, bool there);
/// The agent received so many requests to a path so far.
void expectRequests(Tour &tour, const QString &path, int count);

/// Waits until a window that came up by itself takes keys, as somebody does who reads it.
void readWindow(Tour &tour);
/// Chooses an entry of the menu.
void choose(Tour &tour, const QString &entry);
/// Saves the screen under that name, once it rests.
void screenshot(Tour &tour, const QString &name);
/// Changes the scenario.
void change(Tour &tour, const QJsonObject &patch);

/// The title of the menu's first entry that begins so; empty while there is none.
QString entryThatBegins(Tour &tour, const QString &beginning);
/// Watches an entry that begins so and changes until it is gone.
void expectProgress(Tour &tour, const QString &beginning, Within within);
/// Requests to a path that the agent received so far.
int requestsTo(Tour &tour, const QString &path);
/// The digits with spaces between, as a screen reader is to say a code.
QString spelled(const QString &code);
/// Six digits that are not this code.
QString otherCode(const QString &code);

} // namespace korvel::sim
