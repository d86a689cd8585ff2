#pragma once

#include "app/model/tray_state.h"
#include "simulator/home/scenario.h"

#include <QByteArray>

namespace korvel::sim {

/// One update that the account server offers.
struct UpdateOffer {
    UpdateInfo info;     ///< The manifest's entry.
    QByteArray package;  ///< "korvel-package VERSION", a line feed, filler.
    QByteArray manifest; ///< The response to GET /v1/dl/manifest.
};

/// The update of the scenario's section `update`; by default not newer than this build. The same section gives the same
/// bytes.
UpdateOffer updateOffer(const QJsonObject &section);

/// The updates that a home's account server offers.
struct ServerUpdates {
    HomePaths paths;

    UpdateOffer offer() const { return updateOffer(Scenario(paths).section(QLatin1StringView("update"))); }
    /// Path of the package, the key in `server.faults`.
    QString packagePath() const { return QStringLiteral("/dl/") + offer().info.file; }
};

} // namespace korvel::sim
