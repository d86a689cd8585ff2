#pragma once

#include <QString>
#include <QTextBoundaryFinder>
#include <optional>

namespace korvel {

/// Maximum number of characters kept of a text from outside.
constexpr qsizetype MAX_TEXT = 1000;

/// Decodes UTF-8; none if the bytes are invalid.
std::optional<QString> utf8Text(const QByteArray &bytes);

/// Moves to the end of the next grapheme cluster and returns it; -1 at the end of the text. Never between the halves of
/// a surrogate pair, where Qt 6.4 sees a boundary in Indic scripts.
qsizetype nextCluster(QTextBoundaryFinder &finder);

/// `text`, cut to `maxLength` characters with a final "…" if it is longer.
QString shortened(const QString &text, qsizetype maxLength = MAX_TEXT);

/// `text` on one line: control characters and line breaks become spaces, trailing white space is removed. Cut to
/// `maxLength` characters with a final "…" if it is longer.
QString singleLine(const QString &text, qsizetype maxLength = MAX_TEXT);

/// A text from outside as windows show it: line breaks are kept, trailing white space is removed. Cut to MAX_TEXT
/// characters with a final "…" if it is longer.
QString multiLine(const QString &text);

/// A name from outside as titles, notices and the menu show it: one line of at most 64 grapheme clusters (Unicode
/// Standard Annex 29); a longer name ends in "…". Invisible characters are removed and white space is collapsed to one
/// space. Empty if nothing visible remains.
QString shownName(const QString &name);

/// `text` for display: right-to-left words are isolated and direction marks removed, so that a name does not reorder
/// the sentence around it.
QString keepOrder(const QString &text);

} // namespace korvel
