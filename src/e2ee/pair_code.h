#pragma once

#include <QString>

namespace korvel {

/// What a code field shows, and where its caret stands.
struct CodeText {
    QString text;
    qsizetype caret = 0;
    bool operator==(const CodeText &) const = default;
};

/// The digits of a text, of any script, as at most six ASCII digits; everything else is dropped.
QString codeDigits(const QString &text);

/// A code as it is shown: three digits, a blank, the rest.
QString showCode(const QString &digits);

/// A field's text brought into that form, with the caret behind the same digit as before.
CodeText formatCode(const CodeText &typed);

} // namespace korvel
