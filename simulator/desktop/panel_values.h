#pragma once

#include "simulator/desktop/panel_probe.h"

#include <QDBusArgument>

namespace korvel::sim {

// The readings of what a status item and its menu send, without any bus.

// A menu title as it is shown: "_" before a character marks its mnemonic and is not shown, "__" is one "_".
QString withoutMnemonic(const QString &label);

// Entries of the first level of a com.canonical.dbusmenu layout, signature (ia{sv}av).
QList<PanelMenuEntry> readLayout(const QDBusArgument &layout);

// A list of pictures, signature a(iiay): width, height, ARGB32 in network byte order. Malformed ones are left out.
QList<QImage> readPictures(const QDBusArgument &pictures);

// The title of a tool tip, signature (sa(iiay)ss).
QString readToolTip(const QDBusArgument &toolTip);

} // namespace korvel::sim
