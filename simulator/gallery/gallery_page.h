#pragma once

#include "simulator/gallery/stage.h"

#include <QHash>

namespace korvel::gallery {

/// The name of a case's picture, "pairing-window/code-en-light": without what makes no difference to it.
QString pictureName(const Case &shown, const Setting &setting);
/// The file in which each picture is, by the picture's name; several may be in one.
using PictureFiles = QHash<QString, QString>;

/// A page that shows every picture, with buttons for languages and looks; pictures lie beside it.
QByteArray page(const QList<Case> &cases, const PictureFiles &pictures);

} // namespace korvel::gallery
