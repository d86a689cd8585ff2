#include "account/account_notices.h"
#include "account/server_api.h"
#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/e2ee_views.h"
#include "permissions/permission_views.h"
#include "service/service_notices.h"
#include "service/sync_toggle.h"
#include "simulator/gallery/gallery_case.h"
#include "status/health_poll.h"
#include "ui/views/notice_view.h"
#include "ui/widgets/notice_window.h"
#include "update/update_notices.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    std::function<Notice()> notice;
    Differs differs = Differs::InLanguage;
};

const QString ANNA = u"Anna’s phone"_s;
const QString WEBSITE = u"https://korvel.example/"_s;
const QString VERSION = u"2.1.0"_s;

Result<QJsonObject> reply(const char *code, const QString &sentence) {
    return QJsonObject{{u"ok"_s, false}, {u"code"_s, QLatin1StringView(code)}, {u"error"_s, sentence}};
}

QList<Sample> accountSamples() {
    using Lost = HealthEffects::Notice;
    return {
        {"signing-in", signingInNotice},
        {"signed-in", [] { return signedInNotice(u"anna"_s); }},
        {"signed-in-long-name", [] { return signedInNotice(longName()); }},
        {"signed-in-right-to-left", [] { return signedInNotice(rightToLeftName()); }},
        {"sign-in-failed", [] { return signInFailedNotice({}); }},
        {"sign-in-failed-unbroken", [] { return signInFailedNotice(unbrokenName()); }, Differs::InNothing},
        {"agent-awaited", agentAwaitedNotice},
        {"agent-not-up", agentNotUpNotice},
        {"no-sign-in-page", noSignInPageNotice},
        {"signing-out", signingOutNotice},
        {"signed-out", signedOutNotice},
        {"sign-out-failed", signOutFailedNotice},
        {"sign-in-lost", [] { return lostSignInNotice(Lost::SignedOut); }},
        {"account-deleted", [] { return lostSignInNotice(Lost::AccountDeleted); }},
    };
}

QList<Sample> encryptionSamples() {
    return {
        {"encrypted", encryptedNotice},
        {"verifying", verifyingNotice},
        {"allowed", [] { return allowedNotice(ANNA); }},
        {"denied", [] { return deniedNotice(ANNA); }},
        {"denied-long-name", [] { return deniedNotice(shownName(longName())); }},
        {"denied-right-to-left", [] { return deniedNotice(rightToLeftName()); }},
        {"not-admitted", [] { return notAdmittedNotice(Error{}); }},
        {"not-admitted-mismatch",
         [] {
             return notAdmittedNotice(reply("mismatch", L(u"两边的密钥不一致，请勿继续，并立即修改密码",
                                                          u"The keys don't match. Stop, and change your password.")));
         }},
        {"reset-by-a-stranger", strangersResetNotice},
        {"not-rejoined", [] { return notRejoinedNotice(Error{}); }},
        {"speech-download", speechDownloadNotice},
        {"no-speech-download", [] { return noSpeechDownloadNotice(Error{}); }},
    };
}

QList<Sample> serviceSamples() {
    const auto toggled = [](ToggleDirection direction, bool loaded, bool running) {
        return [=] {
            const ServiceResult found = loaded ? ServiceResult::Succeeded : ServiceResult::Failed;
            return toggleNotice(direction, found, running, L(u"● 已连接", u"● Connected"));
        };
    };
    return {
        {"quitting", quittingNotice},
        {"no-log", noLogNotice},
        {"repaired", repairedNotice},
        {"repair-failed", [] { return repairFailedNotice(WEBSITE); }},
        {"paused", toggled(ToggleDirection::Pause, false, false)},
        {"not-paused", toggled(ToggleDirection::Pause, true, true)},
        {"resumed", toggled(ToggleDirection::Resume, true, true)},
        {"resuming", toggled(ToggleDirection::Resume, true, false)},
        {"not-resumed", toggled(ToggleDirection::Resume, false, false)},
        {"prompts-coming", promptsComingNotice},
        {"permissions-requested", permissionsRequestedNotice},
        {"permissions-not-requested", permissionsNotRequestedNotice},
        {"permissions-granted", [] { return permissionVerdictNotice({.permsOk = true}); }},
        {"permissions-missing",
         [] {
             return permissionVerdictNotice(
                 {.permsOk = false,
                  .permsMissing = {L(u"屏幕录制", u"Screen Recording"), L(u"麦克风", u"Microphone")}});
         }},
    };
}

QList<Sample> updateSamples() {
    const UpdateInfo info{.ver = VERSION, .bytes = 48'300'000};
    return {
        {"up-to-date", [] { return upToDateNotice(u"2.0.3"_s); }},
        {"not-checked", [] { return notCheckedNotice(); }},
        {"not-checked-offline",
         [] {
             return notCheckedNotice(netErrorText(Error{ErrorKind::Offline, {}}));
         }},
        {"not-signed", [] { return unsignedNotice(VERSION, WEBSITE); }},
        {"available", [] { return availableNotice(VERSION); }},
        {"downloading", [info] { return downloadingNotice(info); }},
        {"download-failed", [] { return downloadFailedNotice(); }},
        {"server-busy", [] { return downloadRefusedNotice(503, {}, WEBSITE); }},
        {"server-says",
         [] {
             return downloadRefusedNotice(404, L(u"此版本已撤回。", u"This version was withdrawn.").toUtf8(), WEBSITE);
         }},
        {"not-saved", notSavedNotice},
        {"modified", modifiedNotice},
        {"not-verified", notVerifiedNotice},
        {"installing", [] { return installingNotice(VERSION); }},
        {"installed", [] { return installedNotice(VERSION); }},
        {"install-cancelled", [] { return installCancelledNotice(VERSION); }},
        {"swapped", swappedNotice},
        {"installer-opened", installerOpenedNotice},
    };
}

std::shared_ptr<void> show(const Notice &notice) {
    auto window = std::make_shared<NoticeWindow>();
    window->show(NoticeView{.text = notice.text, .error = notice.error}, {});
    return window;
}

} // namespace

QList<Case> noticeCases() {
    QList<Case> cases;
    for (const auto &[group, samples] :
         {std::pair(u"Notices of the account"_s, accountSamples()),
          std::pair(u"Notices of encryption"_s, encryptionSamples()),
          std::pair(u"Notices of the agent"_s, serviceSamples()), std::pair(u"Notices of updates"_s, updateSamples())})
        for (const Sample &sample : samples)
            cases.append(
                {group, QLatin1StringView(sample.name), [sample] { return show(sample.notice()); }, sample.differs});
    return cases;
}

} // namespace korvel::gallery
