#pragma once

#include "account/cn_login_view.h"
#include "app/model/paths.h"
#include "app/model/wording.h"
#include "e2ee/pair_view.h"
#include "exchange/ed25519.h"
#include "exchange/sha256.h"
#include "ports/desktop.h"
#include "ports/http_client.h"
#include "ports/programs.h"
#include "ports/server_client.h"
#include "ports/status_item.h"
#include "ports/windows.h"
#include "ui/views/edit_menu.h"
#include "ui/views/icon_view.h"
#include "ui/views/menu_entry.h"
#include "ui/views/notice_view.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QScopedValueRollback>
#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <vector>

// GoogleTest prints this in its messages.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

namespace korvel::test {

using namespace Qt::StringLiterals;

inline QJsonObject object(const QByteArray &json) { return QJsonDocument::fromJson(json).object(); }

inline Deployment testDeployment(const QString &edition = QStringLiteral("cn"), const QString &updateKey = {}) {
    return {.version = QStringLiteral("1.2.3"),
            .edition = edition,
            .cnServer = QStringLiteral("cn.example:443"),
            .intlServers = {QStringLiteral("intl.example:443"), QStringLiteral("192.0.2.1:443"),
                            QStringLiteral("192.0.2.2:443"), QStringLiteral("192.0.2.3:8443")},
            .site = QStringLiteral("https://site.example"),
            .updatePubkey = updateKey};
}

/// The settings of an edition with its files in `home`.
inline FixedConfig testConfig(const QString &edition, const QString &home = {}, const QString &updateKey = {}) {
    LaunchEnvironment environment;
    environment.home = home;
    return makeFixedConfig(testDeployment(edition, updateKey), environment);
}

/// A temporary home directory with the files that the tray reads.
class TestHome {
    QTemporaryDir folder;

public:
    QString home() const { return folder.path(); }
    FixedConfig fixed = testConfig(u"cn"_s, folder.path());
    Paths paths = makePaths(fixed, folder.path(), 501);

    void write(const QString &path, const QByteArray &content) const {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }
    /// The content of a file; empty if there is none.
    QByteArray read(const QString &path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeConfig(const QByteArray &json) const { write(paths.agentCfg, json); }
    void bind() const { writeConfig(R"({"agentToken":"t","username":"ann","localToken":"secret"})"); }
    void installJobFile() const { write(paths.agentPlist, "<plist/>"); }
};

/// The agent and all servers. The test completes each request: at once, late, out of order or never.
class FakeHttp final : public HttpClient, public ServerClient {
public:
    struct InFlight {
        HttpRequest request;
        Done<HttpReply> done;
    };
    void send(HttpRequest request, Done<HttpReply> done) override {
        last = request;
        paths.append(u'/' + request.url.section(u'/', 3));
        if (request.method == "POST")
            posts.append(request);
        if (respond)
            return done(respond(request));
        inFlight.push_back({std::move(request), std::move(done)});
    }
    void send(ServerRequest r, Done<HttpReply> done) override {
        send(HttpRequest{r.method, r.url, r.headers, r.body, r.timeout, r.maxBytes}, std::move(done));
    }
    void download(ServerRequest request, const QString &file, std::function<void(qint64, qint64)> progress,
                  Done<HttpReply> done) override {
        downloadTo = file;
        onProgress = std::move(progress);
        send(std::move(request), std::move(done));
    }
    void hash(const QString &file, Done<QString> done) override {
        const auto hash = sha256File(file);
        done(hash ? Result(*hash) : Error{ErrorKind::UnreadableResponse, {}});
    }
    void verify(const SignatureProof &proof, Done<bool> done) override { done(verdict(proof)); }
    /// Completes the request number `index` of those in flight.
    void complete(size_t index, Result<HttpReply> result) {
        InFlight sent = std::move(inFlight.at(index));
        inFlight.erase(inFlight.begin() + static_cast<std::ptrdiff_t>(index));
        sent.done(std::move(result));
    }
    std::function<Result<HttpReply>(const HttpRequest &)> respond; ///< If set, completes every request at once.
    std::function<Result<bool>(const SignatureProof &)> verdict = ed25519Valid;
    std::deque<InFlight> inFlight;
    HttpRequest last;
    QStringList paths; ///< Of all requests, in order, with their queries.
    QList<HttpRequest> posts;
    QString downloadTo; ///< The file of the last download, which the test writes.
    std::function<void(qint64, qint64)> onProgress;
};

inline Result<HttpReply> json(const QByteArray &body) { return HttpReply{200, body}; }
inline Result<HttpReply> noResponse() { return Error{ErrorKind::Unreachable, {}}; }

/// The result of a program that exits with `status` after printing `output`.
inline ProgramResult exited(int status, const QByteArray &output = {}) {
    return {.status = status, .launched = true, .output = output, .launchError = {}};
}

/// A service manager with one job.
class FakeLaunchctl final : public Programs {
public:
    ProgramResult run(const ProgramRun &request) override {
        const QString operation = request.arguments.first(), label = request.arguments.last().section(u'/', -1);
        calls.append(operation + u' ' + label);
        if (!runs)
            return {};
        if (operation == u"print" || operation == u"kickstart")
            return exited(loaded ? 0 : 113);
        if (operation == u"bootstrap" && (loaded || failBootstraps-- > 0))
            return exited(5);
        if (operation.startsWith(u"boot") && label.startsWith(u"com.korvel.agent"))
            loaded = operation == u"bootstrap" || (loaded && stuck);
        return exited(0);
    }
    /// The names of all calls.
    QString operations() const { return calls.join(u' ').remove(QRegularExpression(u" com\\.\\S+"_s)); }

    bool loaded = false;
    bool runs = true;       ///< If false, no command can run.
    bool stuck = false;     ///< The job stays loaded.
    int failBootstraps = 0; ///< The number of attempts that fail first.
    QStringList calls;
};

class FakePrograms final : public Programs {
public:
    ProgramResult run(const ProgramRun &request) override {
        runs.push_back(request);
        if (request.stop && request.stop->stopRequested())
            return {.output = {}, .launchError = {}, .end = ProgramResult::End::Stopped};
        return behave ? behave(request) : result;
    }
    std::function<ProgramResult(const ProgramRun &)> behave; ///< If set, replaces `result`.
    std::vector<ProgramRun> runs;
    ProgramResult result = exited(0);
};

class FakeDesktop final : public Desktop {
public:
    void openUrl(const QString &url) override { opened.append(url); }
    bool optionKeyHeld() const override { return option; }
    QString computerName() const override { return u"Studio.local"_s; }
    void installEditMenu(const QList<EditMenuItem> &items) override {
        for (const EditMenuItem &item : items)
            editKeys += item.title.isEmpty() ? u"-"_s : item.key;
    }
    void terminate() override { ++terminated; }

    QStringList opened;
    bool option = false;
    QString editKeys; ///< Of the Edit menu; "-" for a separator.
    int terminated = 0;
};

inline QStringList titlesOf(const QList<MenuEntry> &entries) {
    QStringList titles;
    for (const MenuEntry &entry : entries)
        titles.append(entry.isSeparator() ? u"---"_s : entry.title);
    return titles;
}

/// The entry of a menu with an action; an empty one if there is none.
inline MenuEntry entryFor(Action action, const MenuView &menu) {
    for (const MenuEntry &entry : menu.entries)
        if (entry.action == action)
            return entry;
    return {};
}

/// Keeps what the menu bar shows and counts the changes.
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
    MenuEntry entry(Action action) const { return entryFor(action, menu); }
    void choose(Action action) { events.chosen(entry(action)); }
    /// Chooses an entry that the menu need not show.
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
        return true;
    }
    void answer(int button, const QStringList &texts = {}) {
        ASSERT_TRUE(answered);
        std::exchange(answered, nullptr)({.button = button, .texts = texts});
    }
    /// Escape or the close button.
    void dismiss() { answer(view.escape); }
    AlertView view;
    OpenedBy by = OpenedBy::User;

private:
    std::function<void(const AlertAnswer &)> answered;
};

/// A window that keeps its last view.
template <class Port, class View>
class FakePanel : public Port {
public:
    void apply(const View &v) override { view = v; }
    View view;
    OpenedBy by = OpenedBy::User;
    bool visible = false;
    int presented = 0;

protected:
    bool open(const View &v, OpenedBy b) {
        view = v;
        by = b;
        ++presented;
        return !std::exchange(visible, true);
    }
};

class FakePairPanel final : public FakePanel<PairPanel, PairView> {
public:
    void connect(Events e) override { events = std::move(e); }
    bool isVisible() const override { return visible; }
    void present(const PairView &v, OpenedBy b) override { open(v, b); }
    void hide() override { visible = false; }
    Events events;
};

class FakeLoginPanel final : public FakePanel<LoginPanel, CnLoginView> {
public:
    void connect(std::function<void(const LoginInput &)> i) override { input = std::move(i); }
    bool present(const CnLoginView &v, OpenedBy b) override { return open(v, b); }
    void focus(LoginField f) override { focused = f; }
    void close() override { visible = false; }
    void does(LoginInput::Kind kind, const QString &text = {}, int index = 0) {
        visible = visible && kind != LoginInput::Kind::Close;
        input({.kind = kind, .text = text, .index = index});
    }
    std::function<void(const LoginInput &)> input;
    std::optional<LoginField> focused;
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
    /// The texts shown since the last call, joined by " | ".
    QString take() {
        QStringList texts;
        for (const NoticeView &notice : std::exchange(shown, {}))
            texts.append(notice.text);
        return texts.join(u" | "_s);
    }

    std::vector<NoticeView> shown;
    bool visible = false;
    std::function<void()> click;
};

/// All that the user sees and uses.
struct FakeScreen {
    FakeDesktop desktop;
    FakeItem item;
    FakeNotices notices;
    FakeAlerts alerts;
    FakePairPanel pairPanel;
    FakeLoginPanel loginPanel;
};

} // namespace korvel::test
