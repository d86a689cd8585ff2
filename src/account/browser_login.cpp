#include "account/browser_login.h"

#include "account/account_notices.h"
#include "account/server_api.h"
#include "base/json.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

constexpr int MAX_ATTEMPTS = 15;
constexpr milliseconds RETRY_INTERVAL = 1s;
constexpr milliseconds POLL_INTERVAL = 1s;
constexpr auto PAGE_LIFETIME = 600s;
constexpr auto LATE_RESPONSE_TIMEOUT = 30s;

bool isSecurePage(const QString &address) {
    const QUrl url(address, QUrl::StrictMode);
    return url.isValid() && url.scheme() == u"https" && !url.host().isEmpty();
}

} // namespace

AgentRequest authStartRequest(const QString &device) {
    return {.method = "POST", .path = u"/auth/start"_s, .body = QJsonObject{{u"device"_s, device}}, .timeout = 10s};
}

AgentRequest authStatusRequest(const QString &id) {
    // Encodes everything but letters and digits.
    const QByteArray encoded = QUrl::toPercentEncoding(id, {}, "-._~");
    return {.path = u"/auth/status?id="_s + QString::fromLatin1(encoded), .timeout = 3s};
}

BrowserLogin::BrowserLogin(BrowserLoginState &l, const HealthState &st, const FixedConfig &f, AgentApi &a, Desktop &d,
                           Scheduler &s, Notices &no, CnLogin &cn, AgentControl &ag, AfterSignIn &as)
    : login(l), health(st), fixed(f), api(a), desktop(d), scheduler(s), notices(no), cnLogin(cn), agent(ag),
      afterSignIn(as) {}

void BrowserLogin::startBrowserLogin(int attempt) {
    if (fixed.IS_CN)
        return cnLogin.showCnLogin();
    // A second click while the first waits for the agent must not start a second sign-in.
    if (reopenPage() || (attempt == 0 && starting))
        return;
    starting = true;
    if (!health.running || !api.hasToken())
        return waitForAgent(attempt);
    // After a stop and a new start, the response to the first request is out of date.
    auto received = [this, requested = ++starts](const Result<QJsonObject> &reply) {
        if (requested == starts && std::exchange(starting, false))
            started(reply);
    };
    api.send(authStartRequest(computerDisplayName(desktop.computerName())), alive.guard(std::move(received)));
}

bool BrowserLogin::reopenPage() {
    if (!login.browserLoginId || !login.browserLoginURL || scheduler.now() >= login.browserLoginUntil)
        return false;
    desktop.openUrl(*login.browserLoginURL);
    return true;
}

void BrowserLogin::waitForAgent(int attempt) {
    if (attempt >= MAX_ATTEMPTS) {
        starting = false;
        return notices.showHUD(agentNotUpNotice());
    }
    if (attempt == 0) {
        notices.showHUD(agentAwaitedNotice());
        agent.restartAgent([] {});
    }
    nextAttempt = scheduler.after(RETRY_INTERVAL, [this, attempt] { startBrowserLogin(attempt + 1); });
}

void BrowserLogin::started(const Result<QJsonObject> &reply) {
    const QJsonObject response = reply ? reply.value() : QJsonObject();
    const auto id = jsonText(response.value(u"id"));
    const auto url = jsonText(response.value(u"url"));
    if (id && url && isSecurePage(*url))
        return open(*id, *url);
    notices.showHUD(noSignInPageNotice());
}

void BrowserLogin::open(const QString &id, const QString &url) {
    stopBrowserLogin();
    login.browserLoginId = id;
    login.browserLoginURL = url;
    login.browserLoginUntil = scheduler.now() + PAGE_LIFETIME;
    desktop.openUrl(url);
    browserLoginTimer = scheduler.every(POLL_INTERVAL, [this] { pollBrowserLogin(); });
}

void BrowserLogin::pollBrowserLogin() {
    if (!login.browserLoginId)
        return;
    // A response may arrive shortly after the page has expired.
    if (scheduler.now() > login.browserLoginUntil + LATE_RESPONSE_TIMEOUT)
        return stopBrowserLogin();
    auto received = [this, id = *login.browserLoginId](const Result<QJsonObject> &reply) {
        // Slow responses overlap: only the first outcome counts, and only for the sign-in in progress.
        if (reply && login.browserLoginId == id)
            outcome(reply.value());
    };
    api.send(authStatusRequest(*login.browserLoginId), alive.guard(std::move(received)));
}

void BrowserLogin::outcome(const QJsonObject &response) {
    const QString status = response.value(u"status").toString();
    if (status == u"done") {
        stopBrowserLogin();
        afterSignIn.signedIn(response.value(u"user").toString());
    } else if (status == u"failed") {
        stopBrowserLogin();
        notices.showHUD(signInFailedNotice(jsonText(response.value(u"error"))));
    } else if (status == u"cancelled" || status == u"expired") {
        stopBrowserLogin();
    }
}

void BrowserLogin::stopBrowserLogin() {
    starting = false;
    nextAttempt.cancel();
    browserLoginTimer.cancel();
    login.browserLoginId.reset();
    login.browserLoginURL.reset();
}

} // namespace korvel
