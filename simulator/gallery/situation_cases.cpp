#include "app/model/deployment.h"
#include "app/model/wording.h"
#include "permissions/permission_rules.h"
#include "simulator/gallery/gallery_case.h"
#include "status/health.h"
#include "status/startup_report.h"
#include "ui/menu/menu_view.h"
#include "ui/views/notice_view.h"
#include "ui/widgets/menu_widget.h"
#include "ui/widgets/notice_window.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    QByteArray health = {}; ///< The agent's response; empty: none.
    std::function<void(TrayState &)> then = [](TrayState &) {};
    bool bound = true;
    bool plistExists = true;
    const char *edition = "cn";
};

constexpr Instant NOW = Instant(1h);

/// Calls `show` with the situation of a sample.
std::shared_ptr<void> in(const Sample &sample, std::shared_ptr<void> (*show)(const Situation &)) {
    Deployment deployment = builtDeployment();
    deployment.edition = QLatin1StringView(sample.edition);
    const FixedConfig config = makeFixedConfig(deployment, {});
    TrayState state;
    state.health.jobLoaded = true;
    const Result<QJsonObject> response =
        sample.health.isEmpty() ? Error{} : Result(QJsonDocument::fromJson(sample.health).object());
    applyHealth(state, response, {.now = NOW, .bound = sample.bound, .username = u"anna"_s});
    if (response)
        applyPermReply(state.permissions, response->value(u"perms").toObject());
    sample.then(state);
    return show({.state = state,
                 .isCn = config.IS_CN,
                 .version = config.VERSION,
                 .timing = timingOf(state.health, NOW),
                 .bound = sample.bound,
                 .plistExists = sample.plistExists,
                 .server = config.DEFAULT_SERVER});
}

std::shared_ptr<void> showMenu(const Situation &situation) {
    auto menu = std::make_shared<MenuWidget>(MenuHost::Program, [](const MenuEntry &) {});
    menu->apply(menuView(situation));
    menu->menu().setWindowFlags(Qt::ToolTip); // a popup would grab keyboard and mouse
    menu->menu().show();
    return menu;
}

std::shared_ptr<void> showStartupNotice(const Situation &situation) {
    auto window = std::make_shared<NoticeWindow>();
    if (const auto notice = startupNotice(situation))
        window->show(NoticeView{.text = notice->text, .error = notice->error}, {});
    return window;
}

QByteArray online(const QByteArray &more = {}) {
    return R"({"ok":true,"online":true,"account":"anna","sessions":2)" + more + '}';
}

QByteArray encryption(const QByteArray &report, bool connected = false) {
    return R"({"ok":true,"account":"anna","sessions":1,"online":)" + QByteArray(connected ? "true" : "false") +
           R"(,"e2ee":)" + report + '}';
}

struct Permission {
    QString name;
    const char *state;
    QString why, breaks; ///< Its use, and the effect of its absence.
};

Permission microphone() {
    return {L(u"麦克风", u"Microphone"), "denied", L(u"听写和通话", u"Dictation and calls"),
            L(u"手机上听不到声音", u"the phone hears nothing")};
}

/// A health response with these permissions.
QByteArray lacking(const QList<Permission> &permissions) {
    QByteArrayList items, missing;
    for (const auto &[name, state, why, breaks] : permissions) {
        items.append(QJsonDocument(QJsonObject{{u"name"_s, name},
                                               {u"state"_s, QLatin1StringView(state)},
                                               {u"why"_s, why},
                                               {u"breaks"_s, breaks}})
                         .toJson(QJsonDocument::Compact));
        if (QLatin1StringView(state) != "notrunning"_L1)
            missing.append('"' + name.toUtf8() + '"');
    }
    return online(R"(,"perms":{"ok":false,"missing":[)" + missing.join(',') + R"(],"items":[)" + items.join(',') +
                  "]}");
}

QList<Sample> statusSamples() {
    return {
        {"connected", online()},
        {"not-signed-in", {}, {[](TrayState &) {}}, false},
        {"not-installed", {}, [](TrayState &) {}, true, false},
        {"repair-failed", {}, [](TrayState &s) { s.service.repairFailed = true; }, true, false},
        {"repairing", {}, [](TrayState &s) { s.service.repairing = true; }, true, false},
        {"switching", online(), [](TrayState &s) { s.service.busy = true; }},
        {"starting", {}, [](TrayState &s) { s.health.startingUntil = NOW + 10s; }},
        {"not-responding"},
        {"paused", {}, [](TrayState &s) { s.health.jobLoaded = false; }},
        {"connecting", R"({"ok":true,"account":"anna"})"},
        {"cannot-connect", R"({"ok":true,"account":"anna"})",
         [](TrayState &s) { s.health.connectingSince = NOW - 61s; }},
        {"long-account", R"({"ok":true,"online":true,"account":")" + longName().toUtf8() + "\"}"},
        {"right-to-left-account", R"({"ok":true,"online":true,"account":")" + rightToLeftName().toUtf8() + "\"}"},
    };
}

/// Samples for the menu; the status line is covered by others.
QList<Sample> menuSamples() {
    const UpdateInfo update{.ver = u"2.1.0"_s};
    return {
        {"connected-option-key", online(), [](TrayState &s) { s.menu.optionKey = true; }},
        {"not-signed-in-international", {}, {[](TrayState &) {}}, false, true, "intl"},
        {"signed-out", R"({"ok":true,"account":"anna","authDead":true})"},
        {"account-deleted", R"({"ok":true,"account":"anna","authDead":true,"accountGone":true})", [](TrayState &) {},
         true, true, "intl"},
        {"update-available", online(), [update](TrayState &s) { s.update.updateAvail = update; }},
        {"downloading", online(),
         [update](TrayState &s) { s.update = {.updateAvail = update, .updateBusy = true, .updatePct = 42}; }},
        {"installing", online(),
         [update](TrayState &s) { s.update = {.updateAvail = update, .updateBusy = true, .updatePrompting = true}; }},
    };
}

/// Samples for the startup notice.
QList<Sample> startSamples() {
    return {
        {"sign-in-lost", R"({"ok":true,"account":"anna","authDead":true})",
         [](TrayState &s) { s.health.authDeadNotified = false; }},
        {"pairing", encryption(R"({"state":"pending","pair":{"show":"482913"}})")},
        {"one-permission-missing", lacking({microphone()})},
    };
}

QList<Sample> encryptionSamples() {
    const auto waiting = [](const QString &name) {
        return encryption(
            R"({"state":"active","relay":"ok","asr":{"ready":true},"pending":[{"pendingId":"1","name":")" +
                name.toUtf8() + R"(","platform":"ios"}]})",
            true);
    };
    return {
        {"encrypted", encryption(R"({"state":"active","relay":"ok"})", true)},
        {"encrypted-connecting", encryption(R"({"state":"active","asr":{"installing":"failed"}})", true)},
        {"installing-speech",
         encryption(R"({"state":"active","relay":"ok","asr":{"installing":"download","pct":37}})", true)},
        {"new-device", waiting(u"Anna & Ben’s_phone"_s)},
        {"new-device-long-name", waiting(longName())},
        {"new-device-right-to-left", waiting(rightToLeftName())},
        {"alarm", encryption(R"({"state":"active","relay":"ok","asr":{"ready":true},)"
                             R"("alarms":[{"id":"1","text":")" +
                                 L(u"有人尝试登录。", u"Somebody tried to sign in.").toUtf8() +
                                 R"("},{"id":"2","kind":"reset"}]})",
                             true)},
        {"waiting-for-phone", encryption(R"({"state":"waiting"})")},
        {"code", encryption(R"({"state":"pending","pair":{"show":"482913"}})")},
        {"not-paired", encryption(R"({"state":"approved"})")},
        {"denied", encryption(R"({"state":"rejected"})")},
        {"too-many-codes", encryption(R"({"state":"pair-failed"})")},
        {"removed", encryption(R"({"state":"revoked"})")},
        {"suspended", encryption(R"({"state":"suspended"})")},
        {"turning-on", encryption(R"({"state":"starting","required":true})")},
    };
}

QList<Sample> permissionSamples() {
    const Permission accessibility{L(u"辅助功能", u"Accessibility"), "undetermined",
                                   L(u"在手机上操作这台 Mac", u"Using this Mac from your phone"),
                                   L(u"手机上只能查看", u"the phone can only look")};
    const Permission files{L(u"完全磁盘访问权限", u"Full Disk Access"), "notrunning",
                           L(u"同步受保护的文件夹", u"Syncing folders that macOS protects"),
                           L(u"「文稿」等文件夹不会同步", u"Documents and the like stay here")};
    const QByteArray three = lacking({microphone(), accessibility, files});
    return {
        {"permissions-missing", three},
        {"permissions-requested", three, [](TrayState &s) { s.permissions.permsRequesting = true; }},
        {"one-permission-missing", lacking({microphone()})},
    };
}

} // namespace

QList<Case> situationCases() {
    QList<Case> cases;
    const auto append = [&cases](const QString &group, const QList<Sample> &samples, auto *show, Differs differs) {
        for (const Sample &sample : samples)
            cases.append({group, QLatin1StringView(sample.name), [sample, show] { return in(sample, show); }, differs});
    };
    append(u"Menu"_s, statusSamples() + menuSamples(), showMenu, Differs::InLanguageAndAppearance);
    append(u"Menu with encryption"_s, encryptionSamples(), showMenu, Differs::InLanguageAndAppearance);
    append(u"Menu with permissions"_s, permissionSamples(), showMenu, Differs::InLanguageAndAppearance);
    append(u"Notices at start"_s, statusSamples() + startSamples(), showStartupNotice, Differs::InLanguage);
    return cases;
}

} // namespace korvel::gallery
