#include "e2ee/e2ee_notices.h"

#include "app/model/wording.h"

namespace korvel {

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

} // namespace korvel
