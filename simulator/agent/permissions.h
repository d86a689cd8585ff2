#pragma once

#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QString>
#include <QStringList>

namespace korvel::sim {

/// The privacy permissions that the system keeps for the agent: one document that the agent reports and the user
/// changes in System Settings, whether the agent runs or not. Its `states` are by name, and English names are used in
/// whatever language the agent speaks; `start` is what the scenario last said of all of them.
///
/// A state is granted, denied, undetermined, notrunning, or one that begins with "unknown".
class Permissions {
public:
    explicit Permissions(const HomePaths &home)
        : paths(home), document(paths.state(QStringLiteral("permissions.json"))) {}

    /// Whoever sets a permission that the system is asking for has answered that prompt. False when there is none of
    /// that name.
    bool setState(const QString &name, const QString &state);
    bool grant(const QString &name) { return setState(name, QStringLiteral("granted")); }
    bool revoke(const QString &name) { return setState(name, QStringLiteral("denied")); }

    /// All of them, in the agent's order.
    static QStringList names();
    QString state(const QString &name) const;
    bool isUndetermined(const QString &name) const { return state(name) == QStringLiteral("undetermined"); }

    /// What the agent says of them, in its language: "ok", "missing" (names), and "items", all but those granted.
    QJsonObject report() const;

private:
    QJsonObject read() const;

    HomePaths paths;
    Document document;
};

} // namespace korvel::sim
