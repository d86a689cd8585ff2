#pragma once

#include <QByteArray>
#include <QIcon>
#include <QPainterPath>

namespace korvel {

struct IconView;

/// The shape of the menu-bar icon on an 18 x 18 point canvas, origin at the top left, to be filled.
QPainterPath iconShape(bool on);

/// Side length of the menu-bar icon, in points.
constexpr double TEMPLATE_POINTS = 18;

/// The menu-bar icon in black on nothing, for a menu bar that gives it its colour: PNG at `scale` pixels a point.
QByteArray templatePng(bool on, int scale);

/// The icon for panels that show pictures as they are: in a colour that stands out on light and dark ones, the dimmed
/// look told by a missing centre. Drawn at every size that panels ask for.
QIcon panelIcon(const IconView &view);

} // namespace korvel
