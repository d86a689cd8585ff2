#include "simulator/agent/sign_in.h"

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"
#include "simulator/server/account_server_program.h"
#include "simulator/server/accounts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSysInfo>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

/// `field`: the field of the window that the error is about.
QJsonObject refused(QLatin1StringView field, const QString &error) {
    return {{u"ok"_s, false}, {u"error"_s, error}, {u"field"_s, field}};
}

QJsonObject signedIn(const QString &account) { return {{u"ok"_s, true}, {u"user"_s, account}}; }

bool isDigits(const QString &text, const QString &pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

QJsonObject logIn(const Accounts &accounts, const QString &name, const QString &password) {
    if (name.isEmpty())
        return refused("username"_L1, L(u"请输入手机号或邮箱", u"Enter your phone number or email."));
    if (password.isEmpty())
        return refused("password"_L1, L(u"请输入密码", u"Enter your password."));
    const QString user = accounts.find(name, password);
    return user.isEmpty() ? refused("password"_L1, L(u"账号或密码不正确", u"Incorrect account or password."))
                          : signedIn(user);
}

QJsonObject sendCode(Accounts &accounts, const QString &phone, const QString &purpose) {
    if (const qint64 wait = accounts.codeWait(phone); wait > 0)
        return {{u"ok"_s, false},
                {u"retryAfter"_s, (wait + 999) / 1000},
                {u"error"_s, L(u"验证码已发送，请稍后再试", u"A code was sent just now. Wait a moment.")}};
    accounts.sendCode(phone, purpose);
    return {{u"ok"_s, true}, {u"next"_s, 60}};
}

/// Processes one request {"op": ...} of the sign-in window: login, login-code, register, reset or send-code.
QJsonObject replyTo(Accounts &accounts, const QJsonObject &request) {
    const auto text = [&](QLatin1StringView key) { return request.value(key).toString(); };
    const QString op = text("op"_L1), phone = text("phone"_L1), password = text("password"_L1);
    if (op == "login"_L1)
        return logIn(accounts, text("username"_L1), password);
    const QString known = accounts.find(phone);
    const bool registers = op == "register"_L1 || text("purpose"_L1) == "register"_L1;
    if (!isDigits(phone, u"1[0-9]{10}"_s))
        return refused("phone"_L1, L(u"请输入 11 位手机号", u"Enter a phone number of 11 digits."));
    if (registers && !known.isEmpty())
        return refused("phone"_L1, L(u"该手机号已注册", u"This phone number already has an account."));
    if (!registers && known.isEmpty())
        return refused("phone"_L1, L(u"该手机号尚未注册", u"There's no account with this phone number."));
    if (op == "send-code"_L1)
        return sendCode(accounts, phone, text("purpose"_L1));
    const bool logsIn = op == "login-code"_L1;
    if (!logsIn && password.size() < 8)
        return refused("password"_L1, L(u"密码至少 8 位", u"Use at least 8 characters for the password."));
    if (registers && !request.value("agree"_L1).toBool())
        return refused("agree"_L1, L(u"请先同意用户协议和隐私政策", u"Agree to the terms and the privacy policy."));
    if (!isDigits(text("code"_L1), u"[0-9]{6}"_s))
        return refused("code"_L1, L(u"请输入 6 位验证码", u"Enter the code of 6 digits."));
    if (!accounts.useCode(phone, logsIn ? u"login"_s : op, text("code"_L1)))
        return refused("code"_L1, L(u"验证码不正确或已过期", u"The code is wrong or has expired."));
    if (registers)
        accounts.add(phone, phone, password);
    else if (!logsIn)
        accounts.setPassword(known, password);
    return signedIn(registers ? phone : known);
}

} // namespace

QString macName() { return QSysInfo::machineHostName().remove(u".local"_s).left(32); }

void bindMac(const HomePaths &paths, const QString &account) {
    const AgentConfig config = AgentConfig::ofThisProcess();
    Accounts accounts(paths);
    accounts.release(config.text("agentToken"_L1));
    const Credential granted = accounts.grant(account, macName());
    config.change({{u"agentToken"_s, granted.token},
                   {u"agentId"_s, granted.agentId},
                   {u"username"_s, account},
                   {u"loginName"_s, account},
                   {u"server"_s, AccountServerProcess(paths).address()},
                   {u"host"_s, granted.host}});
}

void signInByCommand(const ProgramCall &call, const QJsonObject &request) {
    const Scenario scenario(call.paths);
    const QJsonObject all = scenario.section("login"_L1);
    const QString op = request.value("op"_L1).toString();
    const QJsonObject entry = all.value(all.contains(op) ? op : u"*"_s).toObject();
    for (const QJsonValue line : entry.value("noise"_L1).toArray())
        std::puts(qUtf8Printable(line.toString()));
    std::fflush(stdout);
    pauseFor(milliseconds(entry, "delayMs"_L1));
    if (entry.value("silent"_L1).toBool())
        return;
    QJsonObject reply = entry.value("reply"_L1).toObject();
    if (reply.isEmpty()) {
        speakAgentLanguage(scenario);
        Accounts accounts(call.paths);
        reply = replyTo(accounts, request);
        if (const QString user = reply.value("user"_L1).toString(); !user.isEmpty())
            bindMac(call.paths, user);
    }
    std::puts(QJsonDocument(reply).toJson(QJsonDocument::Compact).constData());
}

} // namespace korvel::sim
