#include "simulator/desktop/panel_values.h"

#include <QDBusVariant>
#include <QVariantMap>
#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

PanelMenuEntry readEntry(const QDBusArgument &argument) {
    PanelMenuEntry entry;
    QVariantMap properties;
    argument.beginStructure();
    argument >> entry.id >> properties;
    argument.endStructure();
    entry.title = withoutMnemonic(properties.value(u"label"_s).toString());
    entry.enabled = properties.value(u"enabled"_s, true).toBool();
    entry.visible = properties.value(u"visible"_s, true).toBool();
    entry.separator = properties.value(u"type"_s).toString() == u"separator"_s;
    return entry;
}

QImage pictureOf(int width, int height, const QByteArray &bytes) {
    if (width <= 0 || height <= 0 || bytes.size() != qsizetype(width) * height * 4)
        return {};
    QImage image(width, height, QImage::Format_ARGB32);
    for (int row = 0; row < height; ++row)
        qFromBigEndian<quint32>(bytes.constData() + qsizetype(row) * width * 4, width, image.scanLine(row));
    return image;
}

} // namespace

QString withoutMnemonic(const QString &label) {
    QString shown;
    for (qsizetype i = 0; i < label.size(); ++i) {
        if (label[i] == u'_' && ++i == label.size())
            break;
        shown += label[i];
    }
    return shown;
}

QList<PanelMenuEntry> readLayout(const QDBusArgument &layout) {
    QList<PanelMenuEntry> entries;
    int root = 0;
    QVariantMap properties;
    layout.beginStructure();
    layout >> root >> properties;
    layout.beginArray();
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        entries.append(readEntry(child.variant().value<QDBusArgument>()));
    }
    layout.endArray();
    layout.endStructure();
    return entries;
}

QList<QImage> readPictures(const QDBusArgument &pictures) {
    QList<QImage> images;
    pictures.beginArray();
    while (!pictures.atEnd()) {
        int width = 0, height = 0;
        QByteArray bytes;
        pictures.beginStructure();
        pictures >> width >> height >> bytes;
        pictures.endStructure();
        if (const QImage image = pictureOf(width, height, bytes); !image.isNull())
            images.append(image);
    }
    pictures.endArray();
    std::ranges::sort(images, {}, &QImage::width);
    return images;
}

QString readToolTip(const QDBusArgument &toolTip) {
    QString iconName, title, text;
    toolTip.beginStructure();
    toolTip >> iconName;
    readPictures(toolTip);
    toolTip >> title >> text;
    toolTip.endStructure(); // frees what reads the structure
    return title;
}

} // namespace korvel::sim
