#include "platform/plain_text.h"

#include <algorithm>
#include <string>

namespace korvel {

namespace {

constexpr char32_t FIRST_STRONG_ISOLATE = 0x2068, POP_ISOLATE = 0x2069; // Unicode Standard Annex 9

bool isRightToLeft(char32_t c) {
    const QChar::Direction direction = QChar::direction(c);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

/// The control characters, and the line and paragraph separators.
bool breaksLine(QChar c) {
    return c < u' ' || (c >= QChar(0x7f) && c <= QChar(0x9f)) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

bool changesDirection(char32_t c) { return (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069); }

/// Whether a name that began from right to left goes on with `c`.
bool staysInName(char32_t c) {
    const QChar::Direction direction = QChar::direction(c);
    return isRightToLeft(c) || direction == QChar::DirNSM || direction == QChar::DirEN || direction == QChar::DirAN ||
           c == U' ';
}

} // namespace

QString shortened(const QString &text, qsizetype maxLength) {
    if (text.size() <= maxLength)
        return text;
    QString start = text.first(maxLength - 1);
    if (!start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1);
    return start + u'…';
}

QString singleLine(const QString &text, qsizetype maxLength) {
    QString line = shortened(text, maxLength);
    if (std::any_of(line.cbegin(), line.cend(), breaksLine)) // hardly ever: the text stays shared
        std::replace_if(line.begin(), line.end(), breaksLine, u' ');
    return line;
}

QString keepOrder(const QString &text) {
    std::u32string plain = text.toStdU32String();
    std::erase_if(plain, changesDirection);
    std::u32string ordered;
    for (auto c = plain.begin(); c != plain.end();) {
        const auto name = std::find_if(c, plain.end(), isRightToLeft);
        auto after = std::find_if_not(name, plain.end(), staysInName);
        while (after != name && after[-1] == U' ')
            --after;
        ordered.append(c, name);
        if (name != after)
            ordered.append(1, FIRST_STRONG_ISOLATE).append(name, after).append(1, POP_ISOLATE);
        c = after;
    }
    return QString::fromStdU32String(ordered);
}

} // namespace korvel
