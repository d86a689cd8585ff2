#include "e2ee/report.h"

#include "app/model/wording.h"
#include "base/json.h"
#include "base/plain_text.h"

#include <algorithm>

namespace korvel {

namespace {

/// Six digits, and room for separators.
constexpr qsizetype MAX_CODE = 16;

QJsonObject pairOf(const QJsonObject &e2) { return e2.value(u"pair").toObject(); }

QString pendingText(const QJsonObject &e2) {
    if (e2PairDone(e2))
        return L(u"已配对，正在开启加密…", u"Paired. Turning on encryption…");
    if (const auto code = e2PairShow(e2))
        return L(u"请在手机上输入配对码 ", u"Enter code ") + *code + L(u"", u" on your phone");
    return L(u"正在获取配对码…", u"Getting a pairing code…");
}

QString idleText(const QJsonObject &e2) {
    const QString trouble = e2.value(u"trouble").toString();
    return trouble.isEmpty() ? L(u"正在开启加密…", u"Turning on encryption…") : trouble;
}

} // namespace

QJsonObject boundedReport(const QJsonObject &received) {
    QJsonObject report = boundedObject(received, {u"state", u"required", u"relay", u"trouble"});
    const auto copyObject = [&](QStringView key, std::initializer_list<QStringView> keys, qsizetype maxText) {
        if (const QJsonValue value = received.value(key); value.isObject())
            report.insert(key, boundedObject(value.toObject(), keys, maxText));
    };
    const auto copyList = [&](QStringView key, std::initializer_list<QStringView> keys) {
        if (const auto objects = boundedObjects(received.value(key), keys))
            report.insert(key, *objects);
    };
    copyObject(u"pair", {u"show", u"wrong", u"paired"}, MAX_CODE);
    copyObject(u"asr", {u"ready", u"installing", u"pct"}, MAX_TEXT);
    copyList(u"pending", {u"pendingId", u"attempt", u"name", u"platform", u"ready", u"busy"});
    copyList(u"alarms", {u"id", u"kind", u"text"});
    return report;
}

bool isOneOf(const QString &state, std::initializer_list<QStringView> states) {
    return std::find(states.begin(), states.end(), state) != states.end();
}

bool isIdle(const QString &state) { return isOneOf(state, {u"off", u"starting"}); }

QString e2State(const QJsonObject &e2) { return e2.value(u"state").toString(QStringLiteral("off")); }
bool e2Required(const QJsonObject &e2) { return e2.value(u"required").toBool(); }
bool e2PairWrong(const QJsonObject &e2) { return pairOf(e2).value(u"wrong").toBool(); }
bool e2PairDone(const QJsonObject &e2) { return pairOf(e2).value(u"paired").toBool(); }
QList<QJsonObject> e2Pending(const QJsonObject &e2) {
    return jsonObjects(e2.value(u"pending")).value_or(QList<QJsonObject>());
}
QList<QJsonObject> e2Alarms(const QJsonObject &e2) {
    return jsonObjects(e2.value(u"alarms")).value_or(QList<QJsonObject>());
}

std::optional<QString> e2PairShow(const QJsonObject &e2) {
    const QString code = pairOf(e2).value(u"show").toString();
    return code.isEmpty() ? std::nullopt : std::optional(code);
}

bool e2NeedsPairing(const QJsonObject &e2, bool bound, bool authDead) {
    const QString state = e2State(e2);
    if (!bound)
        return false;
    if (authDead)
        return state == u"pair-failed";
    return isOneOf(state, {u"waiting", u"pending", u"approved", u"pair-failed", u"rejected", u"expired"}) ||
           (isIdle(state) && e2Required(e2));
}

bool canShowPairCode(const QJsonObject &e2, bool bound, bool authDead) {
    return e2NeedsPairing(e2, bound, authDead) && e2State(e2) == u"pending" && e2PairShow(e2) && !e2PairDone(e2);
}

QString deviceName(const QJsonObject &request, const QString &unnamed) {
    const QString name = shownName(request.value(u"name").toString());
    return name.isEmpty() ? unnamed : name;
}

QString e2Platform(const QJsonValue &platform) {
    const QString word = platform.toString();
    if (word == u"ios")
        return QStringLiteral("iPhone");
    if (word == u"android")
        return L(u"安卓手机", u"Android");
    if (word == u"mac")
        return QStringLiteral("Mac");
    if (word == u"windows")
        return L(u"Windows 电脑", u"Windows PC");
    if (word == u"linux")
        return L(u"Linux 电脑", u"Linux");
    return L(u"设备", u"Device");
}

std::optional<QString> e2StatusText(const QJsonObject &e2) {
    const QString state = e2State(e2);
    if (state == u"waiting")
        return L(u"请先在手机上登录 Korvel，再配对这台 Mac", u"Sign in to Korvel on your phone, then pair this Mac.");
    if (state == u"pending")
        return pendingText(e2);
    if (state == u"approved")
        return L(u"这台 Mac 尚未配对，请退出账号后重新登录并配对",
                 u"This Mac isn't paired. Sign out, then sign in again to pair it.");
    if (state == u"pair-failed")
        return L(u"配对失败次数过多，请重新登录", u"Too many incorrect codes. Sign in again.");
    if (state == u"rejected")
        return L(u"手机已拒绝这台 Mac，请重新登录后重试", u"Your phone denied this Mac. Sign in again to retry.");
    if (state == u"expired")
        return L(u"配对码已过期，正在刷新…", u"The pairing code expired. Refreshing…");
    if (state == u"revoked")
        return L(u"这台 Mac 已被移出账号，请重新登录", u"This Mac was removed from your account. Sign in again.");
    if (state == u"suspended")
        return L(u"这台 Mac 已被暂停，请重新登录以恢复", u"This Mac is suspended. Sign in again to restore it.");
    if (isIdle(state) && e2Required(e2))
        return idleText(e2);
    return std::nullopt;
}

} // namespace korvel
