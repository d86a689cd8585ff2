#include "account/binding.h"

#include "account/server_rules.h"
#include "app/wording.h"

using namespace Qt::StringLiterals;

namespace korvel {

Binding::Binding(HealthState &st, const FixedConfig &f, const AgentConfig &c, HttpClient &h, const Desktop &d, Hooks hk)
    : health(st), fixed(f), config(c), http(h), desktop(d), hooks(std::move(hk)) {}

void Binding::performLogin(const QString &user, const QString &pass, const QString &server,
                           std::function<void(bool ok, const QString &message)> done) {
    auto request = buildLogin(server, user, pass, computerDisplayName(desktop.computerName()));
    if (!request)
        return done(false, L(u"服务器地址不正确", u"The server address isn't valid."));
    auto answered = [this, user, server, done = std::move(done)](const Result<HttpReply> &reply) {
        const auto answer = parseLogin(reply);
        if (const auto *refusal = std::get_if<QString>(&answer))
            return done(false, *refusal);
        bind(std::get<Credential>(answer), user, server, [user, done](bool stored) {
            if (stored)
                done(true, L(u"● 已登录 ", u"● Signed in as ") + user);
            else
                done(false, L(u"登录失败，请稍后重试", u"Couldn't sign in. Try again later."));
        });
    };
    http.send(std::move(*request), Done<HttpReply>(alive.guard(std::move(answered))));
}

void Binding::bind(const Credential &credential, const std::optional<QString> &username, const QString &server,
                   std::function<void(bool stored)> then) {
    const QJsonObject cfg = config.readCfg();
    const QString oldToken = cfgText(cfg, u"agentToken");
    if (oldToken.isEmpty() || oldToken == credential.agentToken)
        return store(credential, username, server, std::move(then));
    // The server that holds it, also when it is another edition's.
    const QString oldServer = normalizeServer(cfgText(cfg, u"server")).value_or(fixed.DEFAULT_SERVER);
    unbind(oldToken, oldServer, alive.guard([this, credential, username, server, then = std::move(then)] {
        store(credential, username, server, then);
    }));
}

void Binding::store(const Credential &credential, const std::optional<QString> &username, const QString &server,
                    std::function<void(bool stored)> then) {
    const bool stored = config.changeCfg([&](QJsonObject &cfg) {
        cfg[u"server"_s] = server;
        cfg[u"agentId"_s] = credential.agentId;
        cfg[u"agentToken"_s] = credential.agentToken;
        cfg[u"host"_s] = computerDisplayName(desktop.computerName());
        for (const QString &key : {u"username"_s, u"loginName"_s})
            if (username)
                cfg[key] = *username;
            else
                cfg.remove(key);
    });
    // Nobody could ever release a credential that is kept nowhere.
    if (!stored)
        return unbind(credential.agentToken, server, [then = std::move(then)] { then(false); });
    health.authDead = health.accountGone = health.authDeadNotified = false;
    health.account = username.value_or(QString());
    hooks.restartAgent([then = std::move(then)] { then(true); });
}

void Binding::unbind(const QString &token, const QString &server, std::function<void()> then) {
    auto request = buildUnbind(server, token);
    if (!request)
        return then();
    http.send(std::move(*request), Done<HttpReply>([then = std::move(then)](const Result<HttpReply> &) { then(); }));
}

void Binding::unbindCurrent(std::function<void()> then) {
    const QJsonObject cfg = config.readCfg();
    const QString token = cfgText(cfg, u"agentToken");
    if (token.isEmpty())
        return then();
    unbind(token, serverOf(fixed, cfg), std::move(then));
}

} // namespace korvel
