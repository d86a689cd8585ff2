#pragma once

#include <QByteArray>
#include <QIcon>
#include <QImage>
#include <QPixmap>

namespace korvel {

struct IconView;

/// Side length of the menu-bar icon, in points.
constexpr double TEMPLATE_POINTS = 18;

/// The menu-bar icon in black on transparent, for a menu bar that recolours it: PNG at `scale` pixels per point.
QByteArray templatePng(bool on, int scale);

/// The icon for panels that do not recolour it: visible on light and dark, without its centre when dimmed. Contains all
/// sizes that panels request.
QIcon panelIcon(const IconView &view);

/// The application's icon: the shape of the menu-bar icon in white on a rounded blue square, `side` pixels wide.
QImage applicationIcon(int side);

/// The symbol of an alert: the application icon, or a warning sign with a small icon. Sharp at every scale, visible on
/// light and dark.
QPixmap alertSymbol(bool warning, qreal pixelsPerPoint);

} // namespace korvel
