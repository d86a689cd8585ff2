#include "simulator/agent/agent_encryption.h"

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"

#include <QJsonDocument>
#include <QMap>
#include <QTimer>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

/// The message of a failure, in the agent's language.
QString textOf(const QString &code) {
    const QMap<QString, QString> texts{
        {u"wrong-code"_s, L(u"配对码与新设备上显示的不一致", u"That isn't the code shown on the new device.")},
        {u"bad-code"_s, L(u"配对码必须是 6 位数字", u"A pairing code has 6 digits.")},
        {u"answered"_s, L(u"该请求已经处理过了", u"This request has already been answered.")},
        {u"mismatch"_s,
         L(u"新设备的密钥不一致，请勿允许它加入", u"The new device's keys don't match. Don't let it join.")},
        {u"busy"_s, L(u"正在验证上一次输入", u"The previous answer is still being checked.")},
        {u"not-pairing"_s, L(u"这台 Mac 当前不在配对中", u"This Mac isn't being paired.")},
        {u"no-reset"_s, L(u"没有需要接受的加密重置", u"There is no encryption reset to accept.")},
        {u"no-alarm"_s, L(u"没有这条安全提醒", u"There is no such alarm.")}};
    return texts.value(code, L(u"操作失败（%1）", u"That failed (%1).").arg(code));
}

HttpResponse refusal(const QString &code) {
    return HttpResponse::json({{u"ok"_s, false}, {u"code"_s, code}, {u"error"_s, textOf(code)}});
}

} // namespace

void AgentEncryption::respondTo(const HttpRequest &request, const Scenario &scenario, const Respond &respond) {
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    const QByteArray path = request.path();
    const QString device = path == "/e2ee/pair" ? body.value("pendingId"_L1).toString() : QString();
    if (checking.contains(device))
        return respond(refusal(u"busy"_s));
    const QJsonObject replies = scenario.section("e2ee"_L1).value("replies"_L1).toObject();
    const QJsonObject forced = scenario.fault(replies, u"e2ee"_s, QString::fromLatin1(path));
    const int delay = milliseconds(forced, "delayMs"_L1);
    if (delay == 0)
        return respondNow(path, body, forced, respond);
    if (!device.isEmpty())
        checking.insert(device);
    QTimer::singleShot(delay, &timers, [=, this] {
        checking.remove(device);
        speakAgentLanguage(scenario);
        respondNow(path, body, forced, respond);
    });
}

void AgentEncryption::respondNow(const QByteArray &path, const QJsonObject &body, const QJsonObject &forced,
                                 const Respond &respond) {
    QString failure = forced.value("code"_L1).toString();
    if (failure.isEmpty())
        failure = encryption.act(path, body);
    respond(failure.isEmpty() ? HttpResponse::json({{u"ok"_s, true}}) : refusal(failure));
}

} // namespace korvel::sim
