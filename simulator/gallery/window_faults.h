#pragma once

#include <QStringList>

class QWidget;

namespace korvel::gallery {

/// What is wrong with how a window that is on the screen lays out what it shows, a line each: a text that its control
/// cuts off, two controls that overlap, a control that leaves the window, a window that leaves the screen.
QStringList layoutFaults(const QWidget &window);

/// All that a window says: titles, labels, buttons, fields, entries, and the tool tips of these.
QStringList shownTexts(const QWidget &window);

/// What tells that two windows are not the same thing in English and Chinese, a line each: words of the other language,
/// no Chinese character in the Chinese one, or marks, numbers or names that only one of them has.
QStringList languageFaults(const QString &english, const QString &chinese);

} // namespace korvel::gallery
