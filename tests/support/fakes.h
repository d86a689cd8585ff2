#pragma once

#include "account/cn_login_view.h"
#include "account/login_panel.h"
#include "app/model/paths.h"
#include "app/model/wording.h"
#include "e2ee/pair_panel.h"
#include "e2ee/pair_view.h"
#include "ports/desktop.h"
#include "ports/http_client.h"
#include "ports/programs.h"
#include "ports/server_client.h"
#include "ports/service_control.h"
#include "ports/status_item.h"
#include "ports/windows.h"
#include "ui/views/edit_menu.h"
#include "ui/views/icon_view.h"
#include "ui/views/menu_entry.h"
#include "ui/views/notice_view.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUrl>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

// GoogleTest prints these in its messages.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList &list, std::ostream *out) {
    *out << list.join(QStringLiteral(" | ")).toStdString();
}

namespace korvel::test {

using namespace Qt::StringLiterals;

/// Sets the language of all texts for the life of the scope.
class LanguageScope {
public:
    explicit LanguageScope(bool chinese) : before(ZH) { ZH = chinese; }
    ~LanguageScope() { ZH = before; }

private:
    bool before;
};

inline QJsonObject object(const QByteArray &json) { return QJsonDocument::fromJson(json).object(); }

inline Deployment testDeployment(const QString &edition = QStringLiteral("cn")) {
    return {.version = QStringLiteral("1.2.3"),
            .edition = edition,
            .cnServer = QStringLiteral("cn.example:443"),
            .intlServers = {QStringLiteral("intl.example:443"), QStringLiteral("192.0.2.1:443"),
                            QStringLiteral("192.0.2.2:443"), QStringLiteral("192.0.2.3:8443")},
            .site = QStringLiteral("https://site.example"),
            .updatePubkey = QString()};
}

/// A home directory of its own, with what the tray reads in it.
class TestHome {
    QTemporaryDir folder;

public:
    QString home() const { return folder.path(); }
    FixedConfig fixed = makeFixedConfig(testDeployment(), {.preferredLanguages = {},
                                                           .home = folder.path(),
                                                           .hookPort = std::nullopt,
                                                           .korvelHome = std::nullopt,
                                                           .automation = std::nullopt});
    Paths paths = makePaths(fixed, folder.path(), 501);

    void write(const QString &path, const QByteArray &content) const {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }
    void writeConfig(const QByteArray &json) const { write(paths.agentCfg, json); }
    void bind() const { writeConfig(R"({"agentToken":"t","username":"ann","localToken":"secret"})"); }
    void installJobFile() const { write(paths.agentPlist, "<plist/>"); }
};

/// The agent and all servers, whose answers the test gives: at once, late, out of order, never.
class FakeHttp final : public HttpClient, public ServerClient {
public:
    struct Request : HttpRequest {
        bool isForServer = false;
    };
    struct Sent {
        Request request;
        Done<HttpReply> done;
    };
    void send(HttpRequest request, Done<HttpReply> done) override { take({std::move(request)}, std::move(done)); }
    void send(ServerRequest request, Done<HttpReply> done) override {
        Request common{{request.method, request.url, request.headers, request.body}, true};
        common.timeout = request.timeout;
        common.maxBytes = request.maxBytes;
        lastForServer = std::move(request);
        take(std::move(common), std::move(done));
    }
    void download(ServerRequest request, const QString &file, std::function<void(qint64, qint64)> progress,
                  Done<HttpReply> done) override {
        downloadTo = file;
        onProgress = std::move(progress);
        send(std::move(request), std::move(done));
    }
    void hash(const QString &file, Done<QString> done) override {
        QFile content(file);
        if (!content.open(QIODevice::ReadOnly))
            return done(Error{ErrorKind::UnreadableResponse, {}});
        done(QString::fromLatin1(QCryptographicHash::hash(content.readAll(), QCryptographicHash::Sha256).toHex()));
    }
    void verify(const SignatureProof &proof, Done<bool> done) override { done(verdict(proof)); }
    /// Answers the request number `index` of those that are open.
    void reply(size_t index, Result<HttpReply> result) {
        Sent sent = std::move(open.at(index));
        open.erase(open.begin() + static_cast<std::ptrdiff_t>(index));
        sent.done(std::move(result));
    }
    std::function<Result<HttpReply>(const Request &)> answer; ///< Where set, every request is answered at once.
    std::function<Result<bool>(const SignatureProof &)> verdict = [](const SignatureProof &) { return true; };
    std::deque<Sent> open;
    Request last;
    ServerRequest lastForServer;
    int count = 0;
    QStringList paths;
    QString downloadTo; ///< The file of the last download, which the test writes.
    std::function<void(qint64, qint64)> onProgress;

private:
    void take(Request request, Done<HttpReply> done) {
        ++count;
        last = request;
        paths.append(QUrl(request.url).path());
        if (answer)
            return done(answer(request));
        open.push_back({std::move(request), std::move(done)});
    }
};

inline Result<HttpReply> json(const QByteArray &body) { return HttpReply{200, body}; }
inline Result<HttpReply> noAnswer() { return Error{ErrorKind::Unreachable, {}}; }

/// A service manager with one job, or that fails as told.
class FakeServices final : public ServiceControl {
public:
    ServiceResult print(const QString &label) override { return call(QStringLiteral("print ") + label, loaded); }
    ServiceResult bootstrap(const QString &jobFile) override {
        const bool good = runs && !loaded && failBootstraps-- <= 0;
        loaded = loaded || good;
        return call(QStringLiteral("bootstrap ") + QFileInfo(jobFile).fileName(), good);
    }
    ServiceResult bootout(const QString &label) override {
        if (runs && !stuck && label == u"com.korvel.agent")
            loaded = false;
        return call(QStringLiteral("bootout ") + label, true);
    }
    ServiceResult enable(const QString &label) override { return call(QStringLiteral("enable ") + label, true); }
    ServiceResult disable(const QString &label) override { return call(QStringLiteral("disable ") + label, true); }
    ServiceResult kickstart(const QString &label) override {
        return call(QStringLiteral("kickstart ") + label, loaded);
    }

    bool loaded = false;
    bool runs = true;       ///< Without, no command can be run.
    bool stuck = false;     ///< The job never goes away.
    int failBootstraps = 0; ///< So many attempts fail first.
    QStringList calls;

private:
    ServiceResult call(const QString &what, bool good) {
        calls.append(what);
        if (!runs)
            return ServiceResult::Unknown;
        return good ? ServiceResult::Succeeded : ServiceResult::Failed;
    }
};

class FakePrograms final : public Programs {
public:
    ProgramResult run(const ProgramRun &request) override {
        runs.push_back(request);
        if (request.stop && request.stop->stopRequested())
            return {.output = {}, .launchError = {}, .end = ProgramResult::End::Stopped};
        return answer ? answer(request) : result;
    }
    std::function<ProgramResult(const ProgramRun &)> answer; ///< Where set, in place of `result`.
    std::vector<ProgramRun> runs;
    ProgramResult result{.status = 0, .launched = true, .output = {}, .launchError = {}};
};

class FakeDesktop final : public Desktop {
public:
    void openUrl(const QString &url) override { opened.append(url); }
    bool optionKeyHeld() const override { return option; }
    QString computerName() const override { return name; }
    void installEditMenu(const QList<EditMenuItem> &items) override { editMenu = items; }
    void terminate() override { ++terminated; }

    QStringList opened;
    bool option = false;
    QString name = QStringLiteral("Studio.local");
    QList<EditMenuItem> editMenu;
    int terminated = 0;
};

/// Remembers what the menu bar shows and how often it was told.
class FakeItem final : public StatusItem {
public:
    void show(Events e) override { events = std::move(e); }
    void apply(const IconView &view) override {
        icon = view;
        ++iconChanges;
    }
    void apply(const MenuView &view) override {
        menu = view;
        ++menuChanges;
    }
    QString statusLine() const { return menu.entries.value(0).title; }
    MenuEntry entry(Action action) const {
        for (const MenuEntry &e : menu.entries)
            if (e.action == action)
                return e;
        return {};
    }
    void choose(Action action) { events.chosen(entry(action)); }
    /// The same of an entry that the menu need not show now.
    void press(Action action) { events.chosen(menuItem({}, action)); }

    Events events;
    IconView icon;
    MenuView menu;
    int iconChanges = 0;
    int menuChanges = 0;
};

/// Alerts that the test answers.
class FakeAlerts final : public Alerts {
public:
    bool isOpen() const override { return answered != nullptr; }
    bool open(const AlertView &v, OpenedBy b, std::function<void(const AlertAnswer &)> a) override {
        if (answered)
            return false;
        view = v;
        by = b;
        answered = std::move(a);
        ++opened;
        return true;
    }
    void answer(int button, const QStringList &texts = {}) {
        ASSERT_TRUE(answered);
        std::exchange(answered, nullptr)({.button = button, .texts = texts});
    }
    void answer(int button, const QString &text) { answer(button, QStringList{text}); }
    /// Escape or the close button.
    void dismiss() { answer(view.escape); }
    AlertView view;
    OpenedBy by = OpenedBy::User;
    int opened = 0;

private:
    std::function<void(const AlertAnswer &)> answered;
};

class FakePairPanel final : public PairPanel {
public:
    void connect(Events e) override { events = std::move(e); }
    bool isVisible() const override { return visible; }
    void present(const PairView &v, OpenedBy b) override {
        view = v;
        by = b;
        visible = true;
        ++presented;
    }
    void apply(const PairView &v) override { view = v; }
    void hide() override { visible = false; }

    Events events;
    PairView view;
    OpenedBy by = OpenedBy::User;
    bool visible = false;
    int presented = 0;
};

/// The mainland sign-in window without a screen; the test is the user.
class FakeLoginPanel final : public LoginPanel {
public:
    void connect(std::function<void(const LoginInput &)> i) override { input = std::move(i); }
    bool present(const CnLoginView &v, OpenedBy b) override {
        view = v;
        by = b;
        ++presented;
        return !std::exchange(visible, true);
    }
    void apply(const CnLoginView &v) override { view = v; }
    void focus(LoginField f) override { focused = f; }
    void close() override { visible = false; }

    void does(LoginInput::Kind kind, const QString &text = {}, int index = 0) {
        if (kind == LoginInput::Kind::Close)
            visible = false;
        input({.kind = kind, .text = text, .index = index});
    }
    std::function<void(const LoginInput &)> input;
    CnLoginView view;
    OpenedBy by = OpenedBy::User;
    std::optional<LoginField> focused;
    bool visible = false;
    int presented = 0;
};

class FakeNotices final : public NoticePanel {
public:
    void show(const NoticeView &view, std::function<void()> onClick) override {
        shown.push_back(view);
        visible = true;
        click = std::move(onClick);
    }
    void hide() override { visible = false; }
    QString last() const { return shown.empty() ? QString() : shown.back().text; }

    std::vector<NoticeView> shown;
    bool visible = false;
    std::function<void()> click;
};

/// Everything that the tray shows to the user and the user does in it.
struct FakeScreen {
    FakeDesktop desktop;
    FakeItem item;
    FakeNotices notices;
    FakeAlerts alerts;
    FakePairPanel pairPanel;
    FakeLoginPanel loginPanel;
};

} // namespace korvel::test
