#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>

namespace korvel::sim {

/// What a home is asked to simulate. Read it afresh for each thing done, so that a change takes effect at once.
class Scenario {
public:
    explicit Scenario(const HomePaths &home);
    /// Replaces the scenario; limited faults count anew. False when the file could not be written.
    static bool write(const HomePaths &paths, const QJsonObject &values);

    const QJsonObject &values() const { return content; }
    /// The object under a key; empty when there is none.
    QJsonObject section(QLatin1StringView key) const { return content.value(key).toObject(); }

    /// The fault under `name` of a section, or `faults`; empty when none is to happen now. One with "times": n happens
    /// n times for each scenario, over all processes of the home.
    QJsonObject fault(QLatin1StringView section, const QString &name) const;
    QJsonObject fault(const QJsonObject &faults, const QString &kind, const QString &name) const;

private:
    HomePaths paths;
    QJsonObject content;
};

} // namespace korvel::sim
