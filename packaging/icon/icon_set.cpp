#include "icon/icon_set.h"

#include "ui/widgets/icons.h"

#include <QBuffer>
#include <QImage>
#include <QtEndian>

namespace korvel {

namespace {

struct Member {
    const char *type; ///< Four letters.
    int side;         ///< In pixels.
};

// Each size with one and with two pixels a point. The two smallest exist only with two: their types for one pixel a
// point cannot hold a PNG.
constexpr Member MEMBERS[] = {{"ic11", 32},  {"ic12", 64},  {"ic07", 128}, {"ic13", 256},
                              {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};

QByteArray part(const char *type, const QByteArray &content) {
    QByteArray length(4, '\0');
    qToBigEndian(static_cast<quint32>(content.size() + 8), length.data());
    return QByteArray(type, 4) + length + content;
}

QByteArray png(const QImage &image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

QByteArray iconSet() {
    QByteArray parts;
    for (const Member &member : MEMBERS)
        parts += part(member.type, png(applicationIcon(member.side)));
    return part("icns", parts);
}

} // namespace korvel
