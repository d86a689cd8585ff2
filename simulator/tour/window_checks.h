#pragma once

#include "simulator/tour/tour.h"

#include <QStringList>

// What the steps with windows ask again and again. Each answer is what went wrong, empty if nothing.
namespace korvel::sim {

// A poll, and what it starts.
inline constexpr auto NEXT_POLL = std::chrono::milliseconds(4500);

// Waits for a window that holds all these texts and the keyboard, and takes a screenshot of that name.
QString expectTexts(Tour &tour, const QStringList &texts, const QString &name);
// The same of a window that has just opened, in the middle of the screen.
QString expectWindow(Tour &tour, const QStringList &texts, const QString &name);
// Waits until a window that came up by itself takes keys, as somebody does who reads it.
void readWindow(Tour &tour);
// Waits until no window shows.
QString expectNoWindow(Tour &tour);
// Waits until the notice reads so.
QString expectNotice(Tour &tour, const QString &text);
// Waits until the menu has, or has not, an entry of that title that can be chosen.
QString expectEntry(Tour &tour, const QString &title, bool there);
// The title of the menu's first entry that begins so; empty while there is none.
QString entryThatBegins(Tour &tour, const QString &beginning);

// Requests to a path that the agent received so far.
int requestsTo(Tour &tour, const QString &path);

// The digits with blanks between, as a screen reader is to say a code.
QString spelled(const QString &code);

// Six digits that are not this code.
QString otherCode(const QString &code);

// The first of several checks that failed; the others are then not made.
QString firstWrong(std::initializer_list<std::function<QString()>> checks);

} // namespace korvel::sim
