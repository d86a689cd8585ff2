#include "e2ee/e2ee_views.h"

#include "app/model/wording.h"
#include "e2ee/report.h"

namespace korvel {

namespace {

void appendSituation(QList<MenuEntry> &list, const Situation &s, const QString &sentence) {
    const QJsonObject &e2 = s.state.e2ee.e2;
    const QString state = e2State(e2);
    const bool authDead = s.state.health.authDead;
    const bool statusLineSaysIt = s.state.health.running && e2NeedsPairing(e2, s.bound, authDead);
    if (s.bound && !statusLineSaysIt) {
        const bool serious = isOneOf(state, {u"approved", u"pair-failed", u"rejected", u"revoked", u"suspended"});
        list.append(menuLine((serious ? QStringLiteral("⚠ ") : QStringLiteral("🔒 ")) + sentence));
    }
    const bool required = isIdle(state) && e2Required(e2);
    if (required || isOneOf(state, {u"waiting", u"pending", u"expired"})) {
        MenuEntry show = menuItem(L(u"显示配对码…", u"Show Pairing Code…"), Action::ShowPair);
        show.enabled = canShowPairCode(e2, s.bound, authDead);
        list.append(show);
    } else if (isOneOf(state, {u"pair-failed", u"rejected"}) && !(s.bound && authDead)) {
        list.append(menuItem(L(u"重新登录…", u"Sign In Again…"), Action::BrowserLogin));
    }
}

MenuEntry pendingItem(const QJsonObject &request) {
    MenuEntry item =
        menuItem(L(u"新设备请求加入：", u"New device: ") + deviceName(request, QStringLiteral("?")) +
                     QStringLiteral(" · ") + e2Platform(request.value(u"platform")) + u'…',
                 Action::E2Pending, L(u"请输入该设备上显示的配对码", u"Enter the pairing code shown on that device."));
    item.payload = request;
    return item;
}

MenuEntry speechEntry(const QJsonObject &asr) {
    const QString tip = L(u"手机上的语音将在这台电脑上转为文字，录音全程加密",
                          u"Voice input from your phone is transcribed on this Mac. Recordings stay encrypted.");
    if (asr.value(u"ready").toBool())
        return menuLine(L(u"语音识别已安装，可在手机上选择「我的电脑识别」",
                          u"Speech recognition is installed. Choose My computer on your phone."));
    const QJsonValue installing = asr.value(u"installing");
    if (installing.toString() == u"failed")
        return menuItem(L(u"重试安装语音识别…", u"Retry Installing Speech Recognition…"), Action::E2AsrInstall, tip);
    if (installing.isString())
        return menuLine(L(u"正在安装语音识别… ", u"Installing speech recognition… ") +
                        QString::number(asr.value(u"pct").toInteger()) + u'%');
    return menuItem(L(u"安装语音识别（约 180 MB）…", u"Install Speech Recognition (180 MB)…"), Action::E2AsrInstall,
                    tip);
}

MenuEntry alarmItem(const QJsonObject &alarm) {
    MenuEntry item =
        menuItem(L(u"⚠ 安全提醒…", u"⚠ Security Alert…"), Action::E2Alarm, alarm.value(u"text").toString());
    item.payload = alarm;
    return item;
}

} // namespace

Notice encryptedNotice() {
    return {.text = L(u"🔒 已加密，开始同步", u"🔒 Encrypted. Syncing now."), .secs = Seconds(3)};
}

Notice verifyingNotice() { return {.text = L(u"正在验证…", u"Verifying…"), .secs = Seconds(50)}; }

Notice allowedNotice(const QString &device) {
    return {.text = L(u"✓ 已允许「", u"✓ Allowed ") + device + L(u"」", u""), .secs = Seconds(4)};
}

Notice deniedNotice(const QString &device) {
    return {.text = L(u"已拒绝「", u"Denied ") + device +
                    L(u"」。如果不是你本人在登录，请立即修改密码",
                      u". If that wasn't you, change your password immediately."),
            .secs = Seconds(6),
            .error = true};
}

Notice notAdmittedNotice(const Result<QJsonObject> &reply) {
    const bool mismatch = reply && reply->value(u"code").toString() == u"mismatch";
    return {.text = errText(reply), .secs = Seconds(mismatch ? 10 : 6), .error = true};
}

Notice strangersResetNotice() {
    return {.text = L(u"请勿批准任何新设备，并立即修改密码",
                      u"Don't approve any new device, and change your password immediately."),
            .secs = Seconds(6),
            .error = true};
}

Notice notRejoinedNotice(const Result<QJsonObject> &reply) {
    return {.text = L(u"无法重新加入：", u"Couldn't rejoin: ") + errText(reply), .secs = Seconds(6), .error = true};
}

Notice speechDownloadNotice() {
    return {.text = L(u"已开始下载语音识别，安装完成后将在菜单中显示",
                      u"Downloading speech recognition. The menu will show when it's ready."),
            .secs = Seconds(4)};
}

Notice noSpeechDownloadNotice(const Result<QJsonObject> &reply) {
    return {.text = L(u"无法开始安装：", u"Couldn't start the installation: ") + errText(reply),
            .secs = Seconds(4),
            .error = true};
}

QList<MenuEntry> e2MenuItems(const Situation &s) {
    const QJsonObject &e2 = s.state.e2ee.e2;
    const QString state = e2State(e2);
    QList<MenuEntry> list;
    if (isIdle(state) && !e2Required(e2))
        return list;
    const bool active = state == u"active";
    if (const auto sentence = e2StatusText(e2); sentence && !active)
        appendSituation(list, s, *sentence);
    if (active)
        list.append(menuLine(e2.value(u"relay").toString() == u"ok"
                                 ? L(u"🔒 已加密", u"🔒 Encrypted")
                                 : L(u"🔒 已加密 · 正在连接服务器…", u"🔒 Encrypted · Connecting to the server…")));
    for (const QJsonObject &request : e2Pending(e2))
        list.append(pendingItem(request));
    if (active)
        list.append(speechEntry(e2.value(u"asr").toObject()));
    for (const QJsonObject &alarm : e2Alarms(e2))
        list.append(alarmItem(alarm));
    if (!list.isEmpty())
        list.append(menuSeparator());
    return list;
}

} // namespace korvel
