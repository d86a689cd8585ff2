#include "simulator/random_text.h"

#include <QRandomGenerator>

namespace korvel::sim {

QString randomHex(int bytes) {
    QByteArray drawn(bytes, '\0');
    for (char &byte : drawn)
        byte = char(QRandomGenerator::system()->bounded(256));
    return QString::fromLatin1(drawn.toHex());
}

QString randomDigits(int count) {
    QString digits;
    for (int drawn = 0; drawn < count; ++drawn)
        digits.append(QChar(u'0' + char16_t(QRandomGenerator::system()->bounded(10))));
    return digits;
}

} // namespace korvel::sim
