#pragma once

#include "app/model/tray_state.h"
#include "simulator/home/scenario.h"

#include <QByteArray>

namespace korvel::sim {

/// One update as the account server has it.
struct UpdateOffer {
    UpdateInfo info;     ///< As the manifest has it.
    QByteArray package;  ///< Its bytes: "korvel-package VERSION", a line feed, filler.
    QByteArray manifest; ///< The response to GET /v1/dl/manifest.
};

/// What the scenario's section `update` names; nothing newer than this build when it is empty. The same section gives
/// the same bytes each time.
UpdateOffer updateOffer(const QJsonObject &section);

/// The updates that a home's account server offers.
struct ServerUpdates {
    HomePaths paths;

    UpdateOffer offer() const { return updateOffer(Scenario(paths).section(QLatin1StringView("update"))); }
    /// Where the server has the package, as `server.faults` names it.
    QString packagePath() const { return QStringLiteral("/dl/") + offer().info.file; }
};

} // namespace korvel::sim
