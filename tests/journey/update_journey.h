#pragma once

#include "journey/journey.h"

namespace korvel::test {

/// A connected Mac of the mainland edition, version 1.2.3, whose account server offers what the test says.
struct UpdateJourney : Journey {
    using Journey::Journey;
    void SetUp() override;

    /// Has the server offer a package of that version, with a merge patch over the scenario for what is to go wrong.
    void offer(const QString &version, const QJsonObject &patch = {});
    /// Looks for an update, as from the menu, and gives what is said.
    QString check();
    /// Chooses the update from the menu and gives what is said in the end.
    QString install();
    bool isBusy() const { return tray->currentState().update.updateBusy; }
    /// Whether the menu offers to update to that version, now.
    bool isOffered(const QString &version) const;
    /// The hashes of what was installed so far.
    QStringList installed() const;
    /// The packages in the tray's cache.
    QStringList cached() const;
};

} // namespace korvel::test
