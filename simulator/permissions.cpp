#include "simulator/permissions.h"

#include "simulator/files.h"
#include "simulator/wording.h"

#include <QJsonArray>

#include <algorithm>
#include <iterator>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

struct KnownPermission {
    Wording name;
    QLatin1StringView pane;
    Wording why;
    Wording breaks;
};

const QString ACCESSIBILITY = u"Accessibility"_s;

constexpr KnownPermission KNOWN[] = {
    {{u"屏幕录制", u"Screen Recording"},
     "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"_L1,
     {u"手机上查看这台 Mac 的屏幕", u"Your phone shows this Mac's screen"},
     {u"手机上看不到屏幕内容", u"Your phone can't see the screen"}},
    {{u"辅助功能", u"Accessibility"},
     "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"_L1,
     {u"手机上点按和输入，操作这台 Mac", u"Your phone clicks and types on this Mac"},
     {u"手机上只能看，不能操作", u"Your phone can look, but not click or type"}},
    {{u"麦克风", u"Microphone"},
     "x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone"_L1,
     {u"手机上听到这台 Mac 旁边的声音", u"Your phone hears what goes on at this Mac"},
     {u"通话时对方听不到声音", u"Calls through this Mac are silent"}},
    {{u"完全磁盘访问权限", u"Full Disk Access"},
     "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"_L1,
     {u"同步受系统保护的文件夹", u"Folders that macOS protects are synced as well"},
     {u"桌面、文稿等文件夹不会同步", u"Desktop, Documents and the like aren't synced"}},
};

bool isUnknown(const QJsonObject &item) {
    const QString state = item.value("state"_L1).toString();
    return item.value("unknown"_L1).toBool(state == "notrunning"_L1 || state.startsWith("unknown"_L1));
}

bool isGranted(const QJsonObject &item) {
    return item.value("state"_L1).toString() == "granted"_L1 && !isUnknown(item);
}

bool isMissing(const QJsonObject &item) {
    const QString state = item.value("state"_L1).toString();
    return (state == "denied"_L1 || state == "undetermined"_L1) && !isUnknown(item);
}

// A permission as the agent words it, before the scenario's changes.
QJsonObject itemOf(const QString &name, const QString &state, bool chinese) {
    const auto known = std::find_if(std::begin(KNOWN), std::end(KNOWN),
                                    [&](const KnownPermission &each) { return each.name.en == name; });
    if (known == std::end(KNOWN))
        return {{u"name"_s, name}, {u"state"_s, state}};
    return {{u"name"_s, known->name.in(chinese)},
            {u"state"_s, state},
            {u"pane"_s, known->pane},
            {u"why"_s, known->why.in(chinese)},
            {u"breaks"_s, known->breaks.in(chinese)}};
}

} // namespace

PermissionRules permissionRules(const QJsonObject &settings) {
    PermissionRules rules;
    const QString start = settings.value("start"_L1).toString();
    if (start == "granted"_L1 || start == "fresh"_L1)
        rules.start = start;
    rules.items = settings.value("items"_L1).toObject();
    rules.deny = settings.value("deny"_L1).toVariant().toStringList();
    rules.promptMs = milliseconds(settings, "promptMs"_L1, rules.promptMs);
    rules.partial = settings.value("partial"_L1).toBool();
    return rules;
}

void follow(Permissions &permissions, const PermissionRules &rules) {
    if (!rules.start.isEmpty() && rules.start != permissions.start)
        permissions = {rules.start, {}, {}};
    for (auto item = rules.items.begin(); item != rules.items.end(); ++item) {
        const QJsonValue state = item.value()["state"_L1];
        if (!state.isString() || permissions.given.value(item.key()) == state)
            continue;
        permissions.given.insert(item.key(), state);
        permissions.states.insert(item.key(), state);
    }
}

QStringList permissionNames(const PermissionRules &rules) {
    QStringList names;
    for (const KnownPermission &each : KNOWN)
        names.append(each.name.in(false));
    for (const QString &name : rules.items.keys())
        if (!names.contains(name))
            names.append(name);
    return names;
}

QString stateOf(const Permissions &permissions, const QString &name) {
    const QString atStart = permissions.start == "fresh"_L1 ? u"undetermined"_s : u"granted"_s;
    return permissions.states.value(name).toString(atStart);
}

bool isPermissionState(const QString &state) {
    return state == "granted"_L1 || state == "denied"_L1 || state == "undetermined"_L1 || state == "notrunning"_L1 ||
           state.startsWith("unknown"_L1);
}

QString promptAnswer(const PermissionRules &rules, const QString &name) {
    return name == ACCESSIBILITY || rules.deny.contains(name) ? u"denied"_s : u"granted"_s;
}

QJsonObject permissionReport(const Permissions &permissions, const PermissionRules &rules, bool chinese) {
    QJsonArray items;
    QJsonArray missing;
    for (const QString &name : permissionNames(rules)) {
        QJsonObject changes = rules.items.value(name).toObject();
        changes.remove("state"_L1); // follow() took it over
        const QJsonObject item = mergePatch(itemOf(name, stateOf(permissions, name), chinese), changes);
        if (!isGranted(item))
            items.append(item);
        if (isMissing(item))
            missing.append(item.value("name"_L1));
    }
    return {{u"ok"_s, missing.isEmpty()}, {u"missing"_s, missing}, {u"items"_s, items}};
}

} // namespace korvel::sim
