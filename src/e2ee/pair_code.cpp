#include "e2ee/pair_code.h"

#include <QList>
#include <algorithm>

namespace korvel {

namespace {
constexpr qsizetype CODE_LENGTH = 6;
constexpr qsizetype GROUP = 3;
} // namespace

QString codeDigits(const QString &text) {
    QString digits;
    for (const char32_t scalar : text.toUcs4()) {
        // Only decimal digits have a digit value and the category Nd; superscripts and circled ones do not.
        if (QChar::category(scalar) == QChar::Number_DecimalDigit && digits.size() < CODE_LENGTH)
            digits += QString::number(QChar::digitValue(scalar));
    }
    return digits;
}

QString showCode(const QString &digits) {
    return digits.size() > GROUP ? digits.first(GROUP) + u' ' + digits.sliced(GROUP) : digits;
}

CodeText formatCode(const CodeText &typed) {
    const QString text = showCode(codeDigits(typed.text));
    qsizetype caret = codeDigits(typed.text.first(std::clamp<qsizetype>(typed.caret, 0, typed.text.size()))).size();
    if (caret > GROUP)
        ++caret; // the space
    return {text, std::min(caret, text.size())};
}

} // namespace korvel
