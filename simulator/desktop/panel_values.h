#pragma once

#include "simulator/desktop/panel_probe.h"

#include <QDBusArgument>

namespace korvel::sim {

// Parsers for the values that a status item and its menu send. They need no bus.

// A menu title as shown: "_" marks the next character as mnemonic and is not shown, "__" is one "_".
QString withoutMnemonic(const QString &label);

// The first level of a com.canonical.dbusmenu layout, signature (ia{sv}av).
QList<PanelMenuEntry> readLayout(const QDBusArgument &layout);

// A list of pictures, signature a(iiay): width, height, ARGB32 in network byte order. Skips malformed ones.
QList<QImage> readPictures(const QDBusArgument &pictures);

// The title of a tool tip, signature (sa(iiay)ss).
QString readToolTip(const QDBusArgument &toolTip);

} // namespace korvel::sim
