#include "icon/icon_set.h"

#include "ui/icon_image.h"

#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>
#include <QtEndian>

namespace korvel {

namespace {

struct Member {
    const char *type; ///< Four letters.
    int side;         ///< In pixels.
};

// Each size in points, and again with two pixels a point. The two smallest ones exist only for the latter: their other
// types hold no PNG.
constexpr Member MEMBERS[] = {{"ic11", 32},  {"ic12", 64},  {"ic07", 128}, {"ic13", 256},
                              {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};

/// What the grid for icons leaves around the shape and how round its corners are, as shares of the side.
constexpr double MARGIN = 100.0 / 1024;
constexpr double RADIUS = 185.0 / 1024;

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

QImage applicationIcon(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side, side);
    QLinearGradient ground(0, MARGIN, 0, 1 - MARGIN);
    ground.setColorAt(0, QColor(0x60, 0xa5, 0xfa));
    ground.setColorAt(1, QColor(0x1d, 0x4e, 0xd8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(0, 0, 1, 1).adjusted(MARGIN, MARGIN, -MARGIN, -MARGIN), RADIUS, RADIUS);
    painter.translate(0.25, 0.25);
    painter.scale(0.5 / TEMPLATE_POINTS, 0.5 / TEMPLATE_POINTS);
    painter.fillPath(iconShape(true), Qt::white);
    return image;
}

QByteArray iconSet() {
    QByteArray parts;
    for (const Member &member : MEMBERS)
        parts += part(member.type, png(applicationIcon(member.side)));
    return part("icns", parts);
}

} // namespace korvel
