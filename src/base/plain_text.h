#pragma once

#include <QString>
#include <optional>

namespace korvel {

/// The most characters of a text from outside that anything is done with.
constexpr qsizetype MAX_TEXT = 1000;

/// The text that the bytes are in UTF-8; none when they are not.
std::optional<QString> utf8Text(const QByteArray &bytes);

/// `text`, cut and ending in "…" when it has more than `maxLength` characters.
QString shortened(const QString &text, qsizetype maxLength = MAX_TEXT);

/// `text` on one line: tabs, line breaks and other control characters become blanks, and there is no
/// white space at the end; what is over `maxLength` characters is cut and ends in "…".
QString singleLine(const QString &text, qsizetype maxLength = MAX_TEXT);

/// A text from outside as a window shows it: at most 1,000 characters, its line breaks kept, without the white space at
/// its end. What is over that length is cut and ends in "…".
QString multiLine(const QString &text);

/// A name from outside as titles, notices and the menu show it: one line of at most 64 characters as a reader counts
/// them (grapheme clusters, Unicode Standard Annex 29). A longer one ends in "…"; what cannot be seen is left out, and
/// white space of any kind and length is one space. Empty when nothing of it can be seen.
QString shownName(const QString &name);

/// `text` for the screen: words in a script from right to left are isolated and marks that change the direction left
/// out, so that the sentence around a name keeps its order.
QString keepOrder(const QString &text);

} // namespace korvel
