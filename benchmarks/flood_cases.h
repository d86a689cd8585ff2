#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace korvel::bench {

/// The responses that an agent floods the tray with.
struct Flood {
    QString name;
    QByteArray health; ///< Response to /health.
    QByteArray perms;  ///< Response to /perms.
};

/// Reports of 1,000 to 1,000,000 entries; in each text field a text of 8 MB and one of just under the response limit;
/// and the nesting that is most expensive to parse.
QList<Flood> floods();

/// The ordinary responses before a flood.
Flood calm();

} // namespace korvel::bench
