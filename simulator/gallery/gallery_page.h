#pragma once

#include "simulator/gallery/stage.h"

#include <QHash>

namespace korvel::gallery {

/// The name of a case's picture, such as "pairing-window/code-en-light", without settings that do not change it.
QString pictureName(const Case &shown, const Setting &setting);
/// The file of each picture, by the picture's name. Equal pictures share a file.
using PictureFiles = QHash<QString, QString>;

/// A page with all pictures, and buttons for language and appearance. The pictures lie beside it.
QByteArray page(const QList<Case> &cases, const PictureFiles &pictures);

} // namespace korvel::gallery
