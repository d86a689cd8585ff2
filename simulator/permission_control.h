#pragma once

#include "simulator/permission_store.h"

#include <QString>
#include <QStringList>

namespace korvel::sim {

// The user who turns the agent's permissions on and off in System Settings: Home::permissions() gives it. It works on
// the state that the agent reports, whether the agent runs or not; the tray sees the effect at its next look. Whoever
// grants or revokes a permission that the system is asking for has answered that prompt.
//
// Names are the English ones, such as "Screen Recording", in whatever language the agent speaks. Each act returns false
// when there is no such permission.
class PermissionControl {
public:
    explicit PermissionControl(PermissionStore store) : store(std::move(store)) {}

    bool grant(const QString &name);
    bool revoke(const QString &name);
    // Puts it into a state: granted, denied, undetermined, notrunning, or one that begins with "unknown". False for
    // another as well.
    bool setState(const QString &name, const QString &state);

    // All of them, in the agent's order.
    QStringList names() const;
    // One's state; empty when there is no such permission.
    QString state(const QString &name) const;
    // What the agent reports as missing.
    QStringList missing() const;

private:
    PermissionStore store;
};

} // namespace korvel::sim
