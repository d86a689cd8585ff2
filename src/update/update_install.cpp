#include "update/update_install.h"

#include "account/server_api.h"
#include "account/server_rules.h"
#include "base/log.h"
#include "base/private_file.h"
#include "ports/system_tools.h"
#include "update/install_script.h"
#include "update/manifest.h"
#include "update/update_notices.h"

#include <QDir>
#include <QFile>
#include <QUrl>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr milliseconds DOWNLOAD_TIMEOUT = 6h;
constexpr std::chrono::seconds SLOW_TIMEOUT = 60s;
constexpr qint64 MAX_PACKAGE_BYTES = Q_INT64_C(4) << 30;
const QString UNFINISHED = u".part"_s; ///< No package name ends so: a partial file is never taken for a package.

/// Whether the package could not be checked at all.
template <class T>
bool couldNotCheck(const Result<T> &check) {
    return !check && check.error().kind != ErrorKind::UnreadableResponse;
}

} // namespace

std::optional<ServerRequest> buildDownload(const QString &server, const UpdateInfo &info) {
    auto request = buildServerRequest(server, u"/dl/"_s + info.file, DOWNLOAD_TIMEOUT);
    if (!request)
        return std::nullopt;
    request->slowTimeout = SLOW_TIMEOUT;
    request->redirects = MAX_REDIRECTS;
    // The size is not signed, so it may lower the limit but not raise it.
    request->maxBytes = info.bytes > 0 ? std::min(info.bytes, MAX_PACKAGE_BYTES) : MAX_PACKAGE_BYTES;
    return request;
}

UpdateInstall::UpdateInstall(UpdateState &u, const FixedConfig &f, const Paths &p, const AgentConfig &c,
                             ServerClient &sc, Programs &pr, Desktop &d, Scheduler &s, Notices &no, Poller &po,
                             Renderer &re)
    : update(u), fixed(f), paths(p), config(c), servers(sc), programs(pr), desktop(d), scheduler(s), notices(no),
      poller(po), renderer(re) {}

QString UpdateInstall::cached(const UpdateInfo &info) const { return paths.updateDir + u'/' + info.file; }

void UpdateInstall::installUpdate() {
    if (!update.updateAvail || update.updateBusy)
        return;
    update.updateBusy = true;
    renderer.stateChanged();
    const UpdateInfo info = *update.updateAvail;
    verifyUpdate(servers, fixed, info, alive.guard([this, info](const Result<bool> &valid) {
        if (!valid)
            return end(downloadFailedNotice(netErrorText(valid.error())));
        if (valid.value())
            return begin(info);
        update.updateBusy = false;
        renderer.stateChanged();
    }));
}

void UpdateInstall::begin(const UpdateInfo &info) {
    if (!prepareCache(info)) {
        log(u"[update] 存不下安装包:"_s + paths.updateDir);
        return end(notSavedNotice());
    }
    if (!QFile::exists(cached(info)))
        return startDownload(info);
    installPkg(info);
}

bool UpdateInstall::prepareCache(const UpdateInfo &info) const {
    if (!makePrivateFolder(paths.updateDir) || !closeFolder(paths.updateDir))
        return false;
    // Removes superseded packages and partial downloads, which are never resumed.
    for (const QString &left : QDir(paths.updateDir).entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (left != info.file)
            QFile::remove(paths.updateDir + u'/' + left);
    return true;
}

void UpdateInstall::startDownload(const UpdateInfo &info) {
    const auto request = buildDownload(serverOf(fixed, config.readCfg().server), info);
    if (!request)
        return end(downloadFailedNotice());
    update.updatePct = 0;
    renderer.stateChanged();
    notices.showHUD(downloadingNotice(info));
    servers.download(*request, cached(info) + UNFINISHED,
                     alive.guard([this, info](qint64 got, qint64 expected) { progress(got, expected, info); }),
                     alive.guard([this, info](const Result<HttpReply> &r) { downloaded(r, info); }));
}

void UpdateInstall::progress(qint64 got, qint64 expected, const UpdateInfo &info) {
    const qint64 whole = expected > 0 ? expected : info.bytes;
    if (whole <= 0)
        return;
    const int percent = static_cast<int>(std::clamp<qint64>(got * 100 / whole, 0, 100));
    if (update.updatePct == percent)
        return;
    update.updatePct = percent;
    renderer.stateChanged();
}

void UpdateInstall::downloaded(const Result<HttpReply> &reply, const UpdateInfo &info) {
    update.updatePct.reset();
    if (reply && reply.value().status == 200)
        return keep(info);
    QFile::remove(cached(info) + UNFINISHED);
    if (reply) {
        log(u"[update] 下载回 HTTP %1:%2"_s.arg(reply.value().status).arg(QString::fromUtf8(reply.value().body)));
        return end(downloadRefusedNotice(reply.value().status, reply.value().body, fixed.SITE_URL));
    }
    if (reply.error().kind == ErrorKind::NotSaved) {
        log(u"[update] 存不下安装包:"_s + reply.error().detail);
        return end(notSavedNotice());
    }
    if (reply.error().kind == ErrorKind::TooLarge)
        return refuseModified(info);
    end(downloadFailedNotice(netErrorText(reply.error())));
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
        return end(notSavedNotice());
    }
    installPkg(info);
}

void UpdateInstall::installPkg(const UpdateInfo &info) {
    renderer.stateChanged();
    ifUnchanged(info, [this, info] { runInstaller(info); });
}

void UpdateInstall::ifUnchanged(const UpdateInfo &info, std::function<void()> then) {
    auto hashed = [this, info, then = std::move(then)](const Result<QString> &sha) {
        if (couldNotCheck(sha))
            return end(notVerifiedNotice());
        if (!sha || sha.value() != info.sha)
            return refuseModified(info);
        verifyUpdate(servers, fixed, info, alive.guard([this, info, then](const Result<bool> &valid) {
            if (couldNotCheck(valid))
                end(notVerifiedNotice());
            else if (valid && valid.value())
                then();
            else
                refuseModified(info);
        }));
    };
    servers.hash(cached(info), alive.guard(std::move(hashed)));
}

void UpdateInstall::runInstaller(const UpdateInfo &info) {
    update.updatePrompting = true;
    renderer.stateChanged();
    notices.showHUD(installingNotice(info.ver));
    ProgramRun install = buildInstall(cached(info), info);
    install.stop = installer = StopToken();
    auto run = [&pr = programs, path = cached(info), install = std::move(install)] {
        pr.run({.executable = XATTR,
                .arguments = {u"-d"_s, u"com.apple.quarantine"_s, path},
                .timeout = SHORT_TOOL_TIMEOUT});
        return pr.run(install);
    };
    scheduler.background(run, alive.guard([this, info](const ProgramResult &result) { installed(result, info); }));
}

void UpdateInstall::cancelInstall() { installer.requestStop(); }

void UpdateInstall::installed(const ProgramResult &result, const UpdateInfo &info) {
    update.updatePrompting = false;
    switch (installOutcome(result)) {
    case InstallOutcome::Installed:
        update.updateAvail.reset();
        update.updatedTo = info.ver;
        QFile::remove(cached(info));
        end(installedNotice(info.ver));
        return poller.poll();
    case InstallOutcome::Cancelled:
        return end(installCancelledNotice(info.ver));
    case InstallOutcome::Modified:
        QFile::remove(cached(info));
        return end(swappedNotice());
    case InstallOutcome::Failed:
        break;
    }
    log(u"[update] 安装没成(osascript 退出码 %1):%2"_s.arg(result.status)
            .arg(result.launched ? QString::fromUtf8(result.output) : result.launchError));
    // The graphical installer gets only the signed package too.
    ifUnchanged(info, [this, info] {
        desktop.openUrl(QUrl::fromLocalFile(cached(info)).toString(QUrl::FullyEncoded));
        end(installerOpenedNotice());
    });
}

void UpdateInstall::refuseModified(const UpdateInfo &info) {
    QFile::remove(cached(info));
    end(modifiedNotice());
}

void UpdateInstall::end(const Notice &notice) {
    update.updateBusy = false;
    update.updatePct.reset();
    renderer.stateChanged();
    notices.showHUD(notice);
}

} // namespace korvel
