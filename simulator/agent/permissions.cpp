#include "simulator/agent/permissions.h"

#include "app/model/wording.h"
#include "simulator/home/scenario.h"

#include <QJsonArray>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

struct Item {
    QString name;
    QString pane; ///< Pane of the privacy settings.
    QString why;
    QString breaks;
};

/// In the order of names().
QList<Item> items() {
    return {{L(u"屏幕录制", u"Screen Recording"), u"ScreenCapture"_s,
             L(u"手机上查看这台 Mac 的屏幕", u"Your phone shows this Mac's screen"),
             L(u"手机上看不到屏幕内容", u"Your phone can't see the screen")},
            {L(u"辅助功能", u"Accessibility"), u"Accessibility"_s,
             L(u"手机上点按和输入，操作这台 Mac", u"Your phone clicks and types on this Mac"),
             L(u"手机上只能看，不能操作", u"Your phone can look, but not click or type")},
            {L(u"麦克风", u"Microphone"), u"Microphone"_s,
             L(u"手机上听到这台 Mac 旁边的声音", u"Your phone hears what goes on at this Mac"),
             L(u"通话时对方听不到声音", u"Calls through this Mac are silent")},
            {L(u"完全磁盘访问权限", u"Full Disk Access"), u"AllFiles"_s,
             L(u"同步受系统保护的文件夹", u"Folders that macOS protects are synced as well"),
             L(u"桌面、文稿等文件夹不会同步", u"Desktop, Documents and the like aren't synced")}};
}

QString stateIn(const QJsonObject &stored, const QString &name) {
    const QString atStart = stored["start"_L1] == "fresh"_L1 ? u"undetermined"_s : u"granted"_s;
    return stored["states"_L1][name].toString(atStart);
}

} // namespace

QStringList Permissions::names() {
    return {u"Screen Recording"_s, u"Accessibility"_s, u"Microphone"_s, u"Full Disk Access"_s};
}

/// A different `start` than before resets all states.
QJsonObject Permissions::read() const {
    const QJsonValue start = Scenario(paths).section("permissions"_L1).value("start"_L1);
    QJsonObject stored = document.read();
    if (start.isString() && start != stored.value("start"_L1).toString(u"granted"_s)) {
        stored = {{u"start"_s, start}};
        document.change([&](QJsonObject &object) {
            object = stored;
            return true;
        });
    }
    return stored;
}

bool Permissions::setState(const QString &name, const QString &state) {
    read();
    return names().contains(name) && document.patch({{u"states"_s, QJsonObject{{name, state}}}});
}

QString Permissions::state(const QString &name) const { return stateIn(read(), name); }

QJsonObject Permissions::report() const {
    const QJsonObject stored = read();
    QJsonArray reported, missing;
    for (qsizetype i = 0; const Item &item : items()) {
        const QString state = stateIn(stored, names()[i++]);
        if (state == "denied"_L1 || state == "undetermined"_L1)
            missing.append(item.name);
        if (state != "granted"_L1)
            reported.append(QJsonObject{
                {u"name"_s, item.name},
                {u"state"_s, state},
                {u"pane"_s, u"x-apple.systempreferences:com.apple.preference.security?Privacy_"_s + item.pane},
                {u"why"_s, item.why},
                {u"breaks"_s, item.breaks}});
    }
    return {{u"ok"_s, missing.isEmpty()}, {u"missing"_s, missing}, {u"items"_s, reported}};
}

} // namespace korvel::sim
