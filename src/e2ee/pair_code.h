#pragma once

#include <QString>

namespace korvel {

/// The text of a code field and the position of its caret.
struct CodeText {
    QString text;
    qsizetype caret = 0;
    bool operator==(const CodeText &) const = default;
};

/// The decimal digits of a text, of any script, as at most six ASCII digits. Drops all other characters.
QString codeDigits(const QString &text);

/// A code in display form: three digits, a space, the rest.
QString showCode(const QString &digits);

/// Formats a field's text that way and keeps the caret behind the same digit.
CodeText formatCode(const CodeText &typed);

} // namespace korvel
