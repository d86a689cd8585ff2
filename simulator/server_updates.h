#pragma once

#include "simulator/home_paths.h"
#include "simulator/update_offer.h"

namespace korvel::sim {

// The updates that a home's account server offers: Home::updates() gives it. It works on the scenario's `update`,
// whether the server runs or not; a replaced scenario replaces what was published.
class ServerUpdates {
public:
    explicit ServerUpdates(HomePaths paths) : paths(std::move(paths)) {}

    // Offers that version; the other keys of `update` stay. Faults with "times" count anew. False when the scenario
    // cannot be written.
    bool publish(const QString &version);
    // Offers nothing new, and drops the other keys as well.
    bool withdraw();

    // What is offered now, with the package's bytes.
    UpdateOffer offer() const;
    // Where the server has the package, as `server.faults` names it: "/dl/FILE".
    QString packagePath() const;

private:
    bool change(const QJsonValue &update);

    HomePaths paths;
};

} // namespace korvel::sim
