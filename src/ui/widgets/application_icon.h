#pragma once

#include <QImage>

namespace korvel {

/// The application's icon: the shape of the menu-bar icon in white on a rounded blue square, `side` pixels wide.
QImage applicationIcon(int side);

} // namespace korvel
