#pragma once

#include "simulator/gallery/gallery_case.h"

namespace korvel::gallery {

/// The name of a case's picture: "pairing-window/code-en-light.png".
QString pictureFile(const Case &shown, const QString &setting);

/// A page that shows every picture, with buttons for languages and looks; pictures lie beside it.
QByteArray page(const QList<Case> &cases);

} // namespace korvel::gallery
