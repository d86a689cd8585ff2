#pragma once

#include <QApplication>
#include <QImage>
#include <QSize>
#include <QTemporaryFile>

class QWidget;

namespace korvel {

/// An application without a display, unless QT_QPA_PLATFORM is "cocoa". Its one screen has a size in points and `scale`
/// pixels per point. It ignores scale and style settings of the environment, and carets do not blink, so pictures are
/// reproducible.
class PictureApplication {
public:
    explicit PictureApplication(int scale = 2, QSize screen = {1280, 800});

private:
    QTemporaryFile screens; ///< Screen configuration of Qt's offscreen platform.
    QByteArray platform;
    char *arguments[4];
    int count = 3;
    QApplication app;
};

/// Completes layout and focus changes of windows just shown, which take several event loop turns.
void finishLayout();

/// The image of a visible window.
QImage pictureOf(QWidget &window);

/// Writes a PNG file; false on failure.
bool savePicture(const QImage &picture, const QString &file);

} // namespace korvel
