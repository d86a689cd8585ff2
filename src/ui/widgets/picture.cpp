#include "ui/widgets/picture.h"

#include "ui/widgets/contrast_style.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QWidget>

namespace korvel {

namespace {

char program[] = "korvel-tray", option[] = "-platform";

/// Qt's platform name for one screen of this size in pixels; the platform's default screen if `file` cannot be written.
QByteArray platformWith(QSize pixels, QTemporaryFile &file) {
    const QJsonObject screen{{QStringLiteral("name"), QStringLiteral("picture")},
                             {QStringLiteral("width"), pixels.width()},
                             {QStringLiteral("height"), pixels.height()},
                             {QStringLiteral("logicalDpi"), 96},
                             {QStringLiteral("logicalBaseDpi"), 96}};
    const QByteArray text =
        QJsonDocument(QJsonObject{{QStringLiteral("screens"), QJsonArray{screen}}}).toJson(QJsonDocument::Compact);
    const bool written = file.open() && file.write(text) == text.size() && file.flush();
    return written ? "offscreen:configfile=" + file.fileName().toLocal8Bit() : QByteArray("offscreen");
}

QByteArray prepared(int scale, QSize screen, QTemporaryFile &file) {
    for (const char *name : {"QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME"})
        qunsetenv(name);
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    // The offscreen platform warns about every feature that it lacks.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false\nqt.qpa.*=false"));
    // Keeps macOS's own platform, so that a package check proves that it loads.
    const QByteArray cocoa("cocoa");
    return qgetenv("QT_QPA_PLATFORM") == cocoa ? cocoa : platformWith(screen * scale, file);
}

} // namespace

PictureApplication::PictureApplication(int scale, QSize screen)
    : platform(prepared(scale, screen, screens)), arguments{program, option, platform.data(), nullptr},
      app(count, arguments) {
    QApplication::setStyle(new ContrastStyle(QStringLiteral("Fusion")));
    QApplication::setCursorFlashTime(0);
    QApplication::setQuitOnLastWindowClosed(false);
}

void finishLayout() {
    for (int turn = 0; turn < 3; ++turn)
        QCoreApplication::processEvents();
}

QImage pictureOf(QWidget &window) {
    finishLayout();
    return window.grab().toImage();
}

bool savePicture(const QImage &picture, const QString &file) { return picture.save(file, "PNG"); }

} // namespace korvel
