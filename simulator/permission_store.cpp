#include "simulator/permission_store.h"

#include "simulator/file_lock.h"
#include "simulator/files.h"
#include "simulator/scenario.h"

#include <QDir>
#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

Permissions permissionsFrom(const QJsonObject &stored) {
    Permissions permissions;
    permissions.start = stored.value("start"_L1).toString(permissions.start);
    permissions.states = stored.value("states"_L1).toObject();
    permissions.given = stored.value("given"_L1).toObject();
    return permissions;
}

QJsonObject toJson(const Permissions &permissions) {
    return {{u"start"_s, permissions.start}, {u"states"_s, permissions.states}, {u"given"_s, permissions.given}};
}

} // namespace

bool PermissionStore::change(const std::function<bool(Permissions &, const PermissionRules &)> &event) const {
    QDir().mkpath(paths.state());
    const FileLock lock(paths.permissions() + ".lock"_L1);
    if (!lock.isHeld())
        return false;
    const Permissions stored = permissionsFrom(readObject(paths.permissions()).value_or(QJsonObject{}));
    const PermissionRules rules = permissionRules(Scenario::read(paths).section("permissions"_L1));
    Permissions current = stored;
    follow(current, rules);
    Permissions changed = current;
    const bool happened = event(changed, rules);
    if (happened)
        current = changed;
    if (current == stored)
        return happened;
    return replaceFile(paths.permissions(), QJsonDocument(toJson(current)).toJson()) && happened;
}

} // namespace korvel::sim
