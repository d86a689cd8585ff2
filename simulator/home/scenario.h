#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>

namespace korvel::sim {

/// The faults and conditions to simulate. Read it again for each use, so that changes take effect at once.
class Scenario {
public:
    explicit Scenario(const HomePaths &home);
    /// Replaces the scenario and restarts the counts of "times". False if the file cannot be written.
    static bool write(const HomePaths &paths, const QJsonObject &values);

    const QJsonObject &values() const { return content; }
    /// The object under a key; empty without one.
    QJsonObject section(QLatin1StringView key) const { return content.value(key).toObject(); }

    /// The fault under `name` of a section, or of `faults`; empty if none is due. A fault with "times": n occurs n
    /// times in all processes of the home together.
    QJsonObject fault(QLatin1StringView section, const QString &name) const;
    QJsonObject fault(const QJsonObject &faults, const QString &kind, const QString &name) const;

private:
    HomePaths paths;
    QJsonObject content;
};

} // namespace korvel::sim
