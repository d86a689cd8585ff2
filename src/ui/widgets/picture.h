#pragma once

#include <QApplication>
#include <QImage>
#include <QSize>
#include <QTemporaryFile>

class QWidget;

namespace korvel {

/// An application that needs no display, unless QT_QPA_PLATFORM is "cocoa". It has one screen of that size in points
/// and draws `scale` pixels a point, whatever the environment says of scales and styles, and without a blinking caret:
/// the same windows give the same pictures.
class PictureApplication {
public:
    explicit PictureApplication(int scale = 2, QSize screen = {1280, 800});

private:
    QTemporaryFile screens; ///< Tells Qt's platform without a display which screens there are.
    QByteArray platform;
    char *arguments[4];
    int count = 3;
    QApplication app;
};

/// Lets windows that were just shown come to rest: layouts, then the focus of an activated one, take turns of the event
/// loop.
void settleWindows();

/// The window as it looks on the screen, which it has to be on.
QImage pictureOf(QWidget &window);

/// Writes a picture as a PNG; false when that failed.
bool savePicture(const QImage &picture, const QString &file);

} // namespace korvel
