#include "update/update_install.h"

#include "account/net_error.h"
#include "account/server_api.h"
#include "account/server_rules.h"
#include "app/wording.h"
#include "platform/log.h"
#include "platform/private_file.h"
#include "platform/system_tools.h"
#include "update/install_script.h"
#include "update/manifest.h"
#include "update/sha256.h"
#include "update/signature.h"

#include <QDir>
#include <QFile>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr milliseconds DOWNLOADED_WITHIN = 6h;
constexpr milliseconds SILENT_AT_MOST = 60s;
constexpr qint64 LARGEST_PACKAGE = Q_INT64_C(4) << 30;
constexpr qsizetype LONGEST_SENTENCE = 80;
const QString UNFINISHED = u".part"_s; ///< Never the name of a package, so that no later try trusts it.

QString megabytes(qint64 bytes) { return QString::number(static_cast<double>(bytes) / 1e6, 'f', 1); }

QString downloadingText(const UpdateInfo &info) {
    const QString size = info.bytes > 0 ? L(u"（", u" (") + megabytes(info.bytes) + L(u" MB）", u" MB)") : QString();
    return L(u"↓ 正在下载 ", u"↓ Downloading ") + info.ver + size +
           L(u"，进度显示在菜单中", u". Progress appears in the menu.");
}

} // namespace

std::optional<HttpRequest> buildDownload(const QString &server, const UpdateInfo &info) {
    auto request = buildServerRequest(server, u"/dl/"_s + info.file, DOWNLOADED_WITHIN);
    if (!request)
        return std::nullopt;
    request->idleTimeout = SILENT_AT_MOST;
    request->redirects = MOST_REDIRECTS;
    request->maxBytes = info.bytes > 0 ? info.bytes : LARGEST_PACKAGE;
    return request;
}

QString refusalText(const HttpReply &reply) {
    if (reply.status == 503 || reply.status == 429)
        return L(u"服务器繁忙，请稍后重试或从官网下载",
                 u"The server is busy. Try again later or download it from the website.");
    const QString body = QString::fromUtf8(reply.body).trimmed();
    const bool sentence =
        !body.isEmpty() && body.size() <= LONGEST_SENTENCE && !body.startsWith(u'{') && !body.startsWith(u'<');
    return sentence ? body : L(u"下载失败，请稍后重试", u"The download failed. Try again later.");
}

UpdateInstall::UpdateInstall(UpdateState &u, const FixedConfig &f, const Paths &p, const AgentConfig &c, HttpClient &h,
                             Programs &pr, Desktop &d, Scheduler &s, Hooks hk)
    : update(u), fixed(f), paths(p), config(c), http(h), programs(pr), desktop(d), scheduler(s), hooks(std::move(hk)) {}

QString UpdateInstall::cached(const UpdateInfo &info) const { return paths.updateDir + u'/' + info.file; }

void UpdateInstall::installUpdate() {
    if (!update.updateAvail || update.updateBusy || !updateSignatureValid(fixed, *update.updateAvail))
        return;
    update.updateBusy = true;
    hooks.render();
    begin();
}

void UpdateInstall::begin() {
    const UpdateInfo info = *update.updateAvail;
    if (!prepareCache(info))
        return updateFailed(
            L(u"无法保存安装包，请检查磁盘空间", u"Couldn't save the installer. Check your disk space."));
    if (!QFile::exists(cached(info)))
        return startDownload(info);
    installPkg(info);
}

bool UpdateInstall::prepareCache(const UpdateInfo &info) const {
    if (!makePrivateFolder(paths.updateDir) || !closeFolder(paths.updateDir))
        return false;
    // What an interrupted download left, which is never gone on with, and packages that another one has replaced.
    for (const QString &left : QDir(paths.updateDir).entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (left != info.file)
            QFile::remove(paths.updateDir + u'/' + left);
    return true;
}

void UpdateInstall::startDownload(const UpdateInfo &info) {
    const auto request = buildDownload(serverOf(fixed, config.readCfg()), info);
    if (!request)
        return updateFailed(L(u"下载失败，请稍后重试", u"The download failed. Try again later."));
    update.updatePct = 0;
    hooks.render();
    hooks.showHUD({.text = downloadingText(info), .secs = Seconds(4)});
    http.download(*request, cached(info) + UNFINISHED,
                  alive.guard([this, info](qint64 got, qint64 expected) { progress(got, expected, info); }),
                  Done<HttpReply>(alive.guard([this, info](const Result<HttpReply> &r) { downloaded(r, info); })));
}

void UpdateInstall::progress(qint64 got, qint64 expected, const UpdateInfo &info) {
    const qint64 whole = expected > 0 ? expected : info.bytes;
    if (whole <= 0)
        return;
    const int percent = static_cast<int>(std::clamp<qint64>(got * 100 / whole, 0, 100));
    if (update.updatePct == percent)
        return;
    update.updatePct = percent;
    hooks.render();
}

void UpdateInstall::downloaded(const Result<HttpReply> &reply, const UpdateInfo &info) {
    update.updatePct.reset();
    if (reply && reply.value().status == 200)
        return keep(info);
    QFile::remove(cached(info) + UNFINISHED);
    if (reply) {
        log(u"[update] 下载回 HTTP %1:%2"_s.arg(reply.value().status).arg(QString::fromUtf8(reply.value().body)));
        return updateFailed(refusalText(reply.value()), fixed.SITE_URL);
    }
    if (reply.error().kind == ErrorKind::NotSaved) {
        log(u"[update] 存不下安装包:"_s + reply.error().detail);
        return updateFailed(
            L(u"无法保存安装包，请检查磁盘空间", u"Couldn't save the installer. Check your disk space."));
    }
    if (reply.error().kind == ErrorKind::TooLarge)
        return refuseModified(info);
    updateFailed(netErrorText(reply.error()));
}

void UpdateInstall::keep(const UpdateInfo &info) {
    const QString unfinished = cached(info) + UNFINISHED;
    if (info.bytes > 0 && QFileInfo(unfinished).size() != info.bytes) {
        QFile::remove(unfinished);
        return refuseModified(info);
    }
    QFile::remove(cached(info));
    QFile file(unfinished);
    if (!file.rename(cached(info))) {
        log(u"[update] 存不下安装包:"_s + file.errorString());
        file.remove();
        return updateFailed(
            L(u"无法保存安装包，请检查磁盘空间", u"Couldn't save the installer. Check your disk space."));
    }
    installPkg(info);
}

void UpdateInstall::installPkg(const UpdateInfo &info) {
    hooks.render();
    ifUnchanged(info, [this, info] { runInstaller(info); });
}

void UpdateInstall::ifUnchanged(const UpdateInfo &info, std::function<void()> then) {
    scheduler.background([path = cached(info)] { return sha256File(path); },
                         alive.guard([this, info, then = std::move(then)](const std::optional<QString> &sha) {
                             if (sha == info.sha && updateSignatureValid(fixed, info))
                                 then();
                             else
                                 refuseModified(info);
                         }));
}

void UpdateInstall::runInstaller(const UpdateInfo &info) {
    hooks.showHUD({.text = L(u"正在安装 ", u"Installing ") + info.ver +
                           L(u"，请在弹出的对话框中输入 Mac 登录密码", u". Enter your Mac password when prompted."),
                   .secs = Seconds(30)});
    auto run = [&pr = programs, path = cached(info), install = buildInstall(cached(info), info)] {
        pr.run({.executable = XATTR, .arguments = {u"-d"_s, u"com.apple.quarantine"_s, path}});
        return pr.run(install);
    };
    scheduler.background(run, alive.guard([this, info](const ProgramResult &result) { installed(result, info); }));
}

void UpdateInstall::installed(const ProgramResult &result, const UpdateInfo &info) {
    switch (installOutcome(result)) {
    case InstallOutcome::Installed:
        update.updateAvail.reset();
        update.updatedTo = info.ver;
        QFile::remove(cached(info));
        end({.text = L(u"✓ 已更新到 ", u"✓ Updated to ") + info.ver, .secs = Seconds(3)});
        return hooks.poll();
    case InstallOutcome::Cancelled:
        return end(
            {.text = L(u"已取消。如需安装，请在菜单中点击「更新到 ", u"Canceled. To install, choose Update to ") +
                     info.ver + L(u"」", u" in the menu."),
             .secs = Seconds(4)});
    case InstallOutcome::Modified:
        return updateFailed(L(u"安装包在安装前被修改，已停止安装",
                              u"The installer was modified before installation, so installation stopped."));
    case InstallOutcome::Failed:
        break;
    }
    log(u"[update] 安装没成(osascript 退出码 %1):%2"_s.arg(result.status)
            .arg(result.launched ? QString::fromUtf8(result.output) : result.launchError));
    // Only what was signed is handed to the graphical installer too.
    ifUnchanged(info, [this, info] {
        desktop.openUrl(QUrl::fromLocalFile(cached(info)).toString(QUrl::FullyEncoded));
        end({.text = L(u"已打开安装器，请按提示完成安装", u"The installer is open. Follow the steps to finish."),
             .secs = Seconds(6)});
    });
}

void UpdateInstall::refuseModified(const UpdateInfo &info) {
    QFile::remove(cached(info));
    updateFailed(L(u"安装包不完整或已被修改，已删除，请稍后重试",
                   u"The installer was incomplete or modified and has been deleted. Try again later."));
}

void UpdateInstall::updateFailed(const QString &text, const QString &link) {
    end({.text = text, .secs = Seconds(6), .error = true, .link = link});
}

void UpdateInstall::end(const Notice &notice) {
    update.updateBusy = false;
    update.updatePct.reset();
    hooks.render();
    hooks.showHUD(notice);
}

} // namespace korvel
