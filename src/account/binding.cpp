#include "account/binding.h"

#include "account/account_notices.h"
#include "account/server_rules.h"
#include "app/model/wording.h"

using namespace Qt::StringLiterals;

namespace korvel {

Binding::Binding(HealthState &st, const FixedConfig &f, const AgentConfig &c, ConfigWaiter &w, ServerClient &sc,
                 const Desktop &d, Poller &po, AgentControl &ag)
    : health(st), fixed(f), config(c), waiter(w), servers(sc), desktop(d), poller(po), agent(ag) {}

void Binding::performLogin(const QString &user, const QString &pass, const QString &server, Done<QString> done) {
    auto request = buildLogin(server, user, pass, computerDisplayName(desktop.computerName()));
    if (!request)
        return done(Error{ErrorKind::InvalidRequest, L(u"服务器地址不正确", u"The server address isn't valid.")});
    auto received = [this, number = ++signIns, user, server, done = std::move(done)](const auto &reply) mutable {
        const Result<Credential> credential = parseLogin(reply);
        if (!credential)
            return done(credential.error());
        auto finished = [user, done = std::make_shared<Done<QString>>(std::move(done))](Outcome outcome) {
            const QString sentence = message(outcome, user);
            (*done)(outcome == Outcome::Bound ? Result(sentence) : Error{ErrorKind::Refused, sentence});
        };
        bind({number, credential.value(), user, server, std::move(finished)}, {});
    };
    servers.send(std::move(*request), alive.guard(std::move(received)));
}

QString Binding::message(Outcome outcome, const QString &user) {
    switch (outcome) {
    case Outcome::Bound:
        return signedInNotice(user).text;
    case Outcome::NotSaved:
        return L(u"无法保存设置，请检查磁盘空间和权限后重试",
                 u"Couldn't save the settings. Check disk space and permissions and try again.");
    case Outcome::Overtaken:
        break;
    }
    return L(u"登录失败，请稍后重试", u"Couldn't sign in. Try again later.");
}

bool Binding::isOvertaken(const SignIn &signIn) const {
    return signIn.number <= abandoned || signIn.number < newestBound;
}

void Binding::bind(const SignIn &signIn, const QString &released) {
    waiter.whenWhole(alive.guard([this, signIn, released] {
        if (isOvertaken(signIn))
            return giveBack(signIn, Outcome::Overtaken);
        const AgentCfg cfg = config.readCfg();
        const QString old = cfg.agentToken;
        if (old.isEmpty() || old == signIn.credential.agentToken || old == released)
            return store(signIn);
        // Checked before releasing the old credential, because a release cannot be undone.
        if (!config.canChangeCfg([&](QJsonObject &changed) { write(signIn, changed); }))
            return giveBack(signIn, Outcome::NotSaved);
        // The server that issued it, even one of another edition.
        const QString oldServer = normalizeServer(cfg.server).value_or(fixed.DEFAULT_SERVER);
        // bind() reads the configuration again: another sign-in may have stored a credential meanwhile.
        unbind(old, oldServer, alive.guard([this, signIn, old] { bind(signIn, old); }));
    }));
}

void Binding::store(const SignIn &signIn) {
    if (!config.changeCfg([&](QJsonObject &cfg) { write(signIn, cfg); }))
        return giveBack(signIn, Outcome::NotSaved);
    newestBound = signIn.number;
    forgetLostSignIn();
    health.account = signIn.username;
    agent.restartAgent(alive.guard([this, signIn] {
        if (isOvertaken(signIn)) // the newer sign-in or the sign-out has released the credential
            return signIn.then(Outcome::Overtaken);
        forgetLostSignIn(); // the previous agent may have reported it again meanwhile
        signIn.then(Outcome::Bound);
    }));
}

void Binding::write(const SignIn &signIn, QJsonObject &cfg) const {
    cfg[u"server"_s] = signIn.server;
    cfg[u"agentId"_s] = signIn.credential.agentId;
    cfg[u"agentToken"_s] = signIn.credential.agentToken;
    cfg[u"host"_s] = computerDisplayName(desktop.computerName());
    for (const QString &key : {u"username"_s, u"loginName"_s})
        cfg[key] = signIn.username;
}

/// Releases a credential that is not stored: nothing else could release it later.
void Binding::giveBack(const SignIn &signIn, Outcome why) {
    unbind(signIn.credential.agentToken, signIn.server, [then = signIn.then, why] { then(why); });
}

void Binding::forgetLostSignIn() {
    poller.ignorePollsInFlight();
    health.authDead = health.accountGone = health.authDeadNotified = false;
}

void Binding::unbind(const QString &token, const QString &server, std::function<void()> then) {
    auto request = buildUnbind(server, token);
    if (!request)
        return then();
    servers.send(std::move(*request), Done<HttpReply>([then = std::move(then)](const Result<HttpReply> &) { then(); }));
}

void Binding::unbindCurrent(std::function<void()> then, const QString &released) {
    waiter.whenWhole(alive.guard([this, then = std::move(then), released] {
        const AgentCfg cfg = config.readCfg();
        const QString token = cfg.agentToken;
        if (token.isEmpty() || token == released)
            return then();
        // A sign-in that completes meanwhile stores another credential.
        unbind(token, serverOf(fixed, cfg.server), alive.guard([this, then, token] { unbindCurrent(then, token); }));
    }));
}

} // namespace korvel
