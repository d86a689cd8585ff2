#include "update/update_notices.h"

#include "app/model/wording.h"
#include "base/plain_text.h"

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr qsizetype MAX_SENTENCE = 80;

Notice failure(const QString &text, const QString &link = {}) {
    return {.text = text, .secs = Seconds(6), .error = true, .link = link};
}

QString megabytes(qint64 bytes) { return QString::number(static_cast<double>(bytes) / 1e6, 'f', 1); }

QString downloadFailed() { return L(u"下载失败，请稍后重试", u"The download failed. Try again later."); }

/// The text of a response that is not a package.
QString refusalText(int status, const QByteArray &body) {
    if (status == 503 || status == 429)
        return L(u"服务器繁忙，请稍后重试或从官网下载",
                 u"The server is busy. Try again later or download it from the website.");
    const QString text = utf8Text(body).value_or(QString()).trimmed();
    const bool sentence =
        !text.isEmpty() && text.size() <= MAX_SENTENCE && !text.startsWith(u'{') && !text.startsWith(u'<');
    return sentence ? text : downloadFailed();
}

} // namespace

Notice upToDateNotice(const QString &version) {
    return {.text = L(u"✓ 已是最新版本（", u"✓ Korvel is up to date (") + version + L(u"）", u")."),
            .secs = Seconds(2.5)};
}

Notice notCheckedNotice(const QString &reason) {
    const QString text =
        reason.isEmpty() ? L(u"无法检查更新，请稍后重试", u"Couldn't check for updates. Try again later.") : reason;
    return {.text = text, .secs = Seconds(4), .error = true};
}

Notice unsignedNotice(const QString &version, const QString &website) {
    return {.text =
                L(u"新版本 ", u"Version ") + version +
                L(u" 未通过安全校验，请从官网下载", u" didn't pass the security check. Download it from the website."),
            .secs = Seconds(8),
            .error = true,
            .link = website};
}

Notice availableNotice(const QString &version) {
    return {.text = L(u"⬆ 有新版本 ", u"⬆ Korvel ") + version +
                    L(u"，请在菜单中点击「更新到 ", u" is available. Choose Update to ") + version +
                    L(u"」", u" in the menu."),
            .secs = Seconds(4)};
}

Notice downloadingNotice(const UpdateInfo &info) {
    const QString size = info.bytes > 0 ? L(u"（", u" (") + megabytes(info.bytes) + L(u" MB）", u" MB)") : QString();
    return {.text = L(u"↓ 正在下载 ", u"↓ Downloading ") + info.ver + size +
                    L(u"，进度显示在菜单中", u". Progress appears in the menu."),
            .secs = Seconds(4)};
}

Notice downloadFailedNotice(const QString &reason) { return failure(reason.isEmpty() ? downloadFailed() : reason); }

Notice downloadRefusedNotice(int status, const QByteArray &body, const QString &website) {
    return failure(refusalText(status, body), website);
}

Notice notSavedNotice() {
    return failure(L(u"无法保存安装包，请检查磁盘空间", u"Couldn't save the installer. Check your disk space."));
}

Notice notVerifiedNotice() {
    return {.text = L(u"无法检查安装包，请稍后重试", u"Couldn't check the installer. Try again later."),
            .secs = Seconds(4),
            .error = true};
}

Notice modifiedNotice() {
    return failure(L(u"安装包不完整或已被修改，已删除，请稍后重试",
                     u"The installer was incomplete or modified and has been deleted. Try again later."));
}

Notice installingNotice(const QString &version) {
    return {.text = L(u"正在安装 ", u"Installing ") + version +
                    L(u"，请在弹出的对话框中输入 Mac 登录密码", u". Enter your Mac password when prompted."),
            .secs = Seconds(30)};
}

Notice installedNotice(const QString &version) {
    return {.text = L(u"✓ 已更新到 ", u"✓ Updated to ") + version, .secs = Seconds(3)};
}

Notice installCancelledNotice(const QString &version) {
    return {.text = L(u"已取消。如需安装，请在菜单中点击「更新到 ", u"Canceled. To install, choose Update to ") +
                    version + L(u"」", u" in the menu."),
            .secs = Seconds(4)};
}

Notice swappedNotice() {
    return failure(L(u"安装包在安装前被修改，已停止安装",
                     u"The installer was modified before installation, so installation stopped."));
}

Notice installerOpenedNotice() {
    return {.text = L(u"已打开安装器，请按提示完成安装", u"The installer is open. Follow the steps to finish."),
            .secs = Seconds(6)};
}

} // namespace korvel
