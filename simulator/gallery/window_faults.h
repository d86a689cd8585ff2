#pragma once

#include <QStringList>

class QWidget;

namespace korvel::gallery {

/// The layout faults of a visible window, one per line: text that its control cuts off, controls that overlap, a
/// control outside its window, a window outside the screen.
QStringList layoutFaults(const QWidget &window);

/// All texts of a window: titles, labels, buttons, fields, entries, and their tool tips.
QStringList shownTexts(const QWidget &window);

/// The differences between the English and the Chinese text of a window beyond the language, one per line: words of the
/// other language, no Chinese character in the Chinese text, or marks, numbers or names in only one of them.
QStringList languageFaults(const QString &english, const QString &chinese);

} // namespace korvel::gallery
