#pragma once

#include <QByteArray>

namespace korvel {

/// The application's icon in all sizes as one file for a bundle: the letters "icns" and the file's length, then for
/// each picture four letters that tell its size, the length of its part and a PNG; lengths count these eight bytes and
/// stand with their most significant byte first.
QByteArray iconSet();

} // namespace korvel
