#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace korvel::bench {

/// What an agent floods the tray with.
struct Flood {
    QString name;
    QByteArray health; ///< Response to /health.
    QByteArray perms;  ///< Response to /perms.
};

/// Reports of 1,000 to 1,000,000 entries, texts of 8 MB and of just under the limit of a response in each text field,
/// and the nesting that costs a parser most.
QList<Flood> floods();

/// What a tray is shown before: nothing unusual.
Flood calm();

} // namespace korvel::bench
