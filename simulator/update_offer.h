#pragma once

#include "app/tray_state.h"

#include <QByteArray>
#include <QJsonObject>

namespace korvel::sim {

// One update as the account server has it.
struct UpdateOffer {
    UpdateInfo info;     // as the manifest has it
    QByteArray package;  // its bytes: "korvel-package VERSION", a line feed, filler
    QByteArray manifest; // the answer to GET /v1/dl/manifest
};

// What the scenario's section `update` asks for; nothing newer than this build when it is empty. The same section gives
// the same bytes each time.
UpdateOffer updateOffer(const QJsonObject &section);

} // namespace korvel::sim
