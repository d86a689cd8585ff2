#pragma once

#include <QString>

namespace korvel {

/// The most characters of a text from outside that anything is done with.
constexpr qsizetype MAX_TEXT = 1000;

/// `text`, cut and ending in "…" when it has more than `maxLength` characters.
QString shortened(const QString &text, qsizetype maxLength = MAX_TEXT);

/// `text` on one line: tabs, line breaks and other control characters become blanks; what is over `maxLength`
/// characters is cut and ends in "…".
QString singleLine(const QString &text, qsizetype maxLength = MAX_TEXT);

/// How long a sentence from outside may be, in characters, where a window shows it.
constexpr qsizetype LONGEST_LINE = 300;

/// `text` for the screen: words in a script from right to left are isolated and marks that change the direction left
/// out, so that the sentence around a name keeps its order.
QString keepOrder(const QString &text);

} // namespace korvel
