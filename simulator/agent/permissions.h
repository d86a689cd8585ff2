#pragma once

#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QString>
#include <QStringList>

namespace korvel::sim {

/// The agent's privacy permissions: one document that the agent reports and the user changes in System Settings,
/// whether or not the agent runs. Its `states` are by English name, in every language of the agent; `start` is the last
/// one of the scenario.
///
/// A state is granted, denied, undetermined, notrunning, or any word that begins with "unknown".
class Permissions {
public:
    explicit Permissions(const HomePaths &home)
        : paths(home), document(paths.state(QStringLiteral("permissions.json"))) {}

    /// Sets a state. Answers the permission's prompt if one is open. False if there is no permission of that name.
    bool setState(const QString &name, const QString &state);
    bool grant(const QString &name) { return setState(name, QStringLiteral("granted")); }
    bool revoke(const QString &name) { return setState(name, QStringLiteral("denied")); }

    /// All permissions, in the agent's order.
    static QStringList names();
    QString state(const QString &name) const;
    bool isUndetermined(const QString &name) const { return state(name) == QStringLiteral("undetermined"); }

    /// The agent's report in its language: "ok", "missing" (names), and "items" (all that are not granted).
    QJsonObject report() const;

private:
    QJsonObject read() const;

    HomePaths paths;
    Document document;
};

} // namespace korvel::sim
