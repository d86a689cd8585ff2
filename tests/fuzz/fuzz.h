#pragma once

#include <QByteArray>
#include <QChar>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace korvel::fuzz {

/// Reports the input as a find unless `holds`.
inline void require(bool holds, const char *sentence) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", sentence);
    std::abort();
}

/// The bytes of an input. The last one is kept apart as the mode, so that seeds are plain texts.
class Input {
public:
    Input(const uint8_t *data, size_t size)
        : bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)) {
        if (bytes.isEmpty())
            return;
        mode = static_cast<unsigned char>(bytes.back());
        bytes.chop(1);
    }
    /// The next bit of the mode.
    bool flag() { return ((mode >> used++) & 1) != 0; }

    QByteArray bytes;
    unsigned mode = 0;

private:
    unsigned used = 0;
};

/// Whether a text consists of ASCII letters, digits and these marks.
inline bool isPlain(const QString &text, const char *marks) {
    return std::all_of(text.begin(), text.end(), [marks](QChar c) {
        return (c < QChar(128) && c.isLetterOrNumber()) || QLatin1StringView(marks).contains(c);
    });
}

inline bool isDirectionMark(QChar c) {
    return c == QChar(0x61c) || c == QChar(0x200e) || c == QChar(0x200f) ||
           (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

inline bool isControl(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

inline bool isOneLine(const QString &text) { return std::none_of(text.begin(), text.end(), isControl); }

/// Whether a text that is about to be drawn is on one line and changes the direction in closed isolates only.
inline bool isDrawable(const QString &text) {
    constexpr char16_t OPEN = 0x2068, CLOSE = 0x2069;
    bool isolated = false;
    for (const QChar c : text) {
        const bool turns = c == (isolated ? CLOSE : OPEN);
        if (isControl(c) || (isDirectionMark(c) && !turns))
            return false;
        isolated = isolated != turns;
    }
    return !isolated;
}

} // namespace korvel::fuzz
