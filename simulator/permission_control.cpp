#include "simulator/permission_control.h"

#include <QJsonArray>

namespace korvel::sim {

using namespace Qt::StringLiterals;

bool PermissionControl::grant(const QString &name) { return setState(name, u"granted"_s); }

bool PermissionControl::revoke(const QString &name) { return setState(name, u"denied"_s); }

bool PermissionControl::setState(const QString &name, const QString &state) {
    return store.change([&](Permissions &permissions, const PermissionRules &rules) {
        if (!permissionNames(rules).contains(name) || !isPermissionState(state))
            return false;
        permissions.states.insert(name, state);
        return true;
    });
}

QStringList PermissionControl::names() const {
    QStringList names;
    store.change([&](const Permissions &, const PermissionRules &rules) {
        names = permissionNames(rules);
        return true;
    });
    return names;
}

QString PermissionControl::state(const QString &name) const {
    QString state;
    store.change([&](const Permissions &permissions, const PermissionRules &rules) {
        if (permissionNames(rules).contains(name))
            state = stateOf(permissions, name);
        return true;
    });
    return state;
}

QStringList PermissionControl::missing() const {
    QStringList missing;
    store.change([&](const Permissions &permissions, const PermissionRules &rules) {
        missing = permissionReport(permissions, rules, false).value("missing"_L1).toVariant().toStringList();
        return true;
    });
    return missing;
}

} // namespace korvel::sim
