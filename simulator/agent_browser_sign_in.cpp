#include "simulator/agent_browser_sign_in.h"

#include "simulator/account_json.h"
#include "simulator/account_server_program.h"
#include "simulator/files.h"
#include "simulator/mac_binding.h"

#include <QJsonDocument>
#include <QUrl>

#include <chrono>

namespace korvel::sim {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto WATCH_INTERVAL = 100ms;

} // namespace

AgentBrowserSignIn::AgentBrowserSignIn(HomePaths paths, AgentConfig config)
    : paths(paths), config(std::move(config)), store(paths) {
    QObject::connect(&watch, &QTimer::timeout, &watch, [this] { collect(); });
    watch.start(WATCH_INTERVAL); // one that was begun by an agent before may be pending
}

HttpAnswer AgentBrowserSignIn::start(const HttpRequest &request) {
    const QString device = QJsonDocument::fromJson(request.body).object().value("device"_L1).toString();
    BrowserSignIn begun;
    store.change([&](AccountBook &book, qint64 now) {
        begun = beginBrowserSignIn(book, device.isEmpty() ? macName() : device, now);
        return true;
    });
    watch.start(WATCH_INTERVAL);
    const QString url = u"https://%1/signin?id="_s.arg(AccountServerProcess(paths).address()) +
                        QString::fromLatin1(QUrl::toPercentEncoding(begun.id));
    return HttpAnswer::json({{u"id"_s, begun.id}, {u"url"_s, url}});
}

HttpAnswer AgentBrowserSignIn::status(const HttpRequest &request) {
    collect();
    AccountBook book = store.read();
    const BrowserSignIn *signIn = findBrowserSignIn(book, request.queryField(u"id"_s), timeNow());
    if (!signIn)
        return HttpAnswer::json({{u"ok"_s, false}, {u"error"_s, u"There is no such sign-in"_s}}, 404);
    QJsonObject answer{{u"status"_s, nameOf(signIn->status)}};
    if (!signIn->account.isEmpty())
        answer.insert("user"_L1, signIn->account);
    if (!signIn->error.isEmpty())
        answer.insert("error"_L1, signIn->error);
    return HttpAnswer::json(answer);
}

// Binds this Mac to whoever has signed in since the last look.
void AgentBrowserSignIn::collect() {
    using Status = BrowserSignIn::Status;
    QString account;
    bool pending = false;
    store.change([&](AccountBook &book, qint64 now) {
        pending = pendingBrowserSignIn(book, now) != nullptr;
        for (BrowserSignIn &signIn : book.signIns) {
            if (signIn.status == Status::Done && !signIn.collected)
                account = signIn.account;
            signIn.collected = signIn.status == Status::Done;
        }
        return true;
    });
    if (!account.isEmpty())
        bindMac(paths, config, account);
    if (!pending)
        watch.stop();
}

} // namespace korvel::sim
