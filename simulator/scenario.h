#pragma once

#include "simulator/home_paths.h"

#include <QByteArray>
#include <QJsonObject>

namespace korvel::sim {

// What a home is asked to play. Read it afresh for each thing done, so that a change takes effect at once.
class Scenario {
public:
    // The scenario in force; an empty one when there is no file or it holds no JSON object.
    static Scenario read(const HomePaths &paths);
    // Replaces the scenario; limited faults count anew. False when the file could not be written.
    static bool write(const HomePaths &paths, const QJsonObject &values);

    // All of it.
    const QJsonObject &values() const { return content; }
    // The object under a key; empty when there is none.
    QJsonObject section(QLatin1StringView key) const { return content.value(key).toObject(); }

    // Whether `fault` happens now. One with "times": n happens n times for each scenario, over all processes of the
    // home; `key` names the fault. A file that keeps the count is locked meanwhile.
    bool takeTurn(const QString &key, const QJsonObject &fault) const;

private:
    HomePaths paths;
    QJsonObject content;
    QByteArray digest; // of the scenario's text: another text counts anew
};

} // namespace korvel::sim
