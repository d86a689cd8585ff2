#include "account/binding.h"

#include "account/account_notices.h"
#include "account/server_rules.h"
#include "app/wording.h"

using namespace Qt::StringLiterals;

namespace korvel {

Binding::Binding(HealthState &st, const FixedConfig &f, const AgentConfig &c, ServerClient &sc, const Desktop &d,
                 Hooks hk)
    : health(st), fixed(f), config(c), servers(sc), desktop(d), hooks(std::move(hk)) {}

void Binding::performLogin(const QString &user, const QString &pass, const QString &server,
                           std::function<void(bool ok, const QString &message)> done) {
    auto request = buildLogin(server, user, pass, computerDisplayName(desktop.computerName()));
    if (!request)
        return done(false, L(u"服务器地址不正确", u"The server address isn't valid."));
    auto answered = [this, asked = ++generation, user, server, done = std::move(done)](const Result<HttpReply> &reply) {
        const auto answer = parseLogin(reply);
        if (const auto *refusal = std::get_if<QString>(&answer))
            return done(false, *refusal);
        const auto finished = [user, done](bool stored) {
            if (stored)
                done(true, signedInNotice(user).text);
            else
                done(false, L(u"登录失败，请稍后重试", u"Couldn't sign in. Try again later."));
        };
        const auto &credential = std::get<Credential>(answer);
        if (asked == generation)
            return bind(credential, user, server, finished);
        // Overtaken by a sign-out or by another sign-in.
        unbind(credential.agentToken, server, [finished] { finished(false); });
    };
    servers.send(std::move(*request), Done<HttpReply>(alive.guard(std::move(answered))));
}

void Binding::bind(const Credential &credential, const QString &username, const QString &server,
                   std::function<void(bool stored)> then) {
    const QJsonObject cfg = config.readCfg();
    const QString oldToken = cfgText(cfg, u"agentToken");
    if (oldToken.isEmpty() || oldToken == credential.agentToken)
        return store(credential, username, server, std::move(then));
    // The server that holds it, also when it is another edition's.
    const QString oldServer = normalizeServer(cfgText(cfg, u"server")).value_or(fixed.DEFAULT_SERVER);
    unbind(oldToken, oldServer, alive.guard([this, oldToken, credential, username, server, then = std::move(then)] {
        // Another sign-in may have ended meanwhile: its credential is the older one now.
        if (cfgText(config.readCfg(), u"agentToken") != oldToken)
            return bind(credential, username, server, then);
        store(credential, username, server, then);
    }));
}

void Binding::store(const Credential &credential, const QString &username, const QString &server,
                    std::function<void(bool stored)> then) {
    const bool stored = config.changeCfg([&](QJsonObject &cfg) {
        cfg[u"server"_s] = server;
        cfg[u"agentId"_s] = credential.agentId;
        cfg[u"agentToken"_s] = credential.agentToken;
        cfg[u"host"_s] = computerDisplayName(desktop.computerName());
        for (const QString &key : {u"username"_s, u"loginName"_s})
            cfg[key] = username;
    });
    // Nobody could ever release a credential that is kept nowhere.
    if (!stored)
        return unbind(credential.agentToken, server, [then = std::move(then)] { then(false); });
    forgetLostSignIn();
    health.account = username;
    hooks.restartAgent(alive.guard([this, then = std::move(then)] {
        forgetLostSignIn(); // the agent of before may have repeated it meanwhile
        then(true);
    }));
}

void Binding::forgetLostSignIn() {
    hooks.disregardOpenPolls();
    health.authDead = health.accountGone = health.authDeadNotified = false;
}

void Binding::unbind(const QString &token, const QString &server, std::function<void()> then) {
    auto request = buildUnbind(server, token);
    if (!request)
        return then();
    servers.send(std::move(*request), Done<HttpReply>([then = std::move(then)](const Result<HttpReply> &) { then(); }));
}

void Binding::unbindCurrent(std::function<void()> then) {
    const QJsonObject cfg = config.readCfg();
    const QString token = cfgText(cfg, u"agentToken");
    if (token.isEmpty())
        return then();
    unbind(token, serverOf(fixed, cfg), alive.guard([this, token, then = std::move(then)] {
        // A sign-in that ended meanwhile left another credential.
        if (cfgText(config.readCfg(), u"agentToken") == token)
            return then();
        unbindCurrent(then);
    }));
}

} // namespace korvel
