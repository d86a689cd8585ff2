#include "platform/plain_text.h"

namespace korvel {

QString singleLine(const QString &text, qsizetype maxLength) {
    QString line = text;
    if (line.size() > maxLength) {
        line.truncate(maxLength - 1);
        if (!line.isEmpty() && line.back().isHighSurrogate())
            line.chop(1);
        line += u'…';
    }
    for (QChar &c : line) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            c = u' ';
    }
    return line;
}

} // namespace korvel
