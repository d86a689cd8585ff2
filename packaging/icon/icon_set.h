#pragma once

#include <QByteArray>

namespace korvel {

/// The application's icon in all sizes, as an icns file: the letters "icns" and the file's length, then for each image
/// a four-letter type, the length of its block and a PNG. Lengths are big-endian and include these eight bytes.
QByteArray iconSet();

} // namespace korvel
