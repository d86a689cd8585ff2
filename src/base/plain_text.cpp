#include "base/plain_text.h"

#include <QStringDecoder>
#include <algorithm>
#include <string>

namespace korvel {

namespace {

constexpr char32_t FIRST_STRONG_ISOLATE = 0x2068, POP_ISOLATE = 0x2069; // Unicode Standard Annex 9

bool isRightToLeft(char32_t c) {
    const QChar::Direction direction = QChar::direction(c);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

/// Control characters, and the line and paragraph separators.
bool breaksLine(QChar c) {
    return c < u' ' || (c >= QChar(0x7f) && c <= QChar(0x9f)) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

/// The subset of those that ends a line.
bool endsLine(QChar c) {
    return (c >= u'\n' && c <= u'\r') || c == QChar(0x85) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

bool changesDirection(char32_t c) {
    constexpr std::u32string_view MARKS = U"\u061c\u200e\u200f";
    return (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069) || MARKS.find(c) != MARKS.npos;
}

/// Whether `c` continues a right-to-left name.
bool staysInName(char32_t c) {
    const QChar::Direction direction = QChar::direction(c);
    return isRightToLeft(c) || direction == QChar::DirNSM || direction == QChar::DirEN || direction == QChar::DirAN ||
           c == U' ';
}

constexpr qsizetype MAX_NAME_READ = 4096; // characters beyond these are not visible anyway
constexpr int MAX_NAME = 64;              // grapheme clusters
constexpr qsizetype MAX_CLUSTER = 24;     // a family emoji with four skin tones takes 19
constexpr int MAX_MARKS = 4;              // per letter; more would overlap the lines above and below

constexpr char32_t ZERO_WIDTH_NON_JOINER = 0x200c, ZERO_WIDTH_JOINER = 0x200d;

/// White space and its look-alikes.
bool isWhiteSpace(char32_t c) {
    static constexpr std::u32string_view FILLERS = U"\u115f\u1160\u2800\u3164\uffa0";
    return QChar::isSpace(c) || QChar::category(c) == QChar::Other_Control || FILLERS.find(c) != FILLERS.npos;
}

bool isMark(char32_t c) {
    const QChar::Category category = QChar::category(c);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing;
}

/// Not drawn, but affects neighbouring characters: direction marks, tags, joiners.
bool isInvisible(char32_t c) {
    return QChar::category(c) == QChar::Other_Format || QChar::category(c) == QChar::Other_Surrogate;
}

bool joins(char32_t c) { return c == ZERO_WIDTH_JOINER || c == ZERO_WIDTH_NON_JOINER; }

std::u32string visibleLine(const std::u32string &text) {
    std::u32string line;
    int marks = 0;
    for (const char32_t c : text) {
        const bool atStart = line.empty() || line.back() == U' ';
        if (isMark(c)) {
            if (!atStart && ++marks <= MAX_MARKS)
                line += c;
        } else if (joins(c)) { // emoji and some scripts need one between two characters
            if (!atStart && !joins(line.back()))
                line += c;
        } else if (isWhiteSpace(c)) {
            if (!atStart)
                line += U' ';
        } else if (!isInvisible(c)) {
            line += c;
            marks = 0;
        }
    }
    while (!line.empty() && (line.back() == U' ' || joins(line.back())))
        line.pop_back();
    return line;
}

QString withoutEndSpace(const QString &text) {
    qsizetype length = text.size();
    while (length > 0 && (text.at(length - 1).isSpace() || breaksLine(text.at(length - 1))))
        --length;
    return text.first(length);
}

} // namespace

std::optional<QString> utf8Text(const QByteArray &bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

qsizetype nextCluster(QTextBoundaryFinder &finder) {
    const QString text = finder.string();
    qsizetype end = finder.toNextBoundary();
    while (end > 0 && end < text.size() && text.at(end).isLowSurrogate() && text.at(end - 1).isHighSurrogate())
        end = finder.toNextBoundary();
    return end;
}

QString shortened(const QString &text, qsizetype maxLength) {
    if (text.size() <= maxLength)
        return text;
    QString start = text.first(maxLength - 1);
    if (!start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1);
    return start + u'…';
}

QString shownName(const QString &name) {
    const QString line = QString::fromStdU32String(visibleLine(name.left(MAX_NAME_READ).toStdU32String()));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line);
    qsizetype end = 0, cut = 0; // ends of the last character and of the last one that leaves room for "…"
    for (int count = 1; count <= MAX_NAME && end < line.size(); ++count) {
        const qsizetype next = nextCluster(finder);
        if (next - end > MAX_CLUSTER)
            break;
        end = next;
        if (count < MAX_NAME)
            cut = end;
    }
    if (end == line.size() && name.size() <= MAX_NAME_READ)
        return line;
    if (cut > 0 && line.at(cut - 1) == u' ')
        --cut;
    return line.first(cut) + u'…';
}

QString multiLine(const QString &text) {
    QString lines = shortened(withoutEndSpace(text), MAX_TEXT);
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar &c : lines)
        if (breaksLine(c))
            c = endsLine(c) ? u'\n' : u' ';
    return lines;
}

QString singleLine(const QString &text, qsizetype maxLength) {
    QString line = shortened(withoutEndSpace(text), maxLength);
    if (std::any_of(line.cbegin(), line.cend(), breaksLine)) // rare: otherwise the string stays shared
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
