#include "simulator/agent_encryption.h"

#include "simulator/agent_language.h"
#include "simulator/files.h"

#include <QJsonDocument>
#include <QTimer>

#include <optional>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QByteArray PAIR_PATH = "/e2ee/pair";

struct Failure {
    QLatin1StringView code;
    QStringView zh;
    QStringView en;
};

constexpr Failure FAILURES[] = {
    {"wrong-code"_L1, u"配对码与新设备上显示的不一致", u"That isn't the code shown on the new device."},
    {"bad-code"_L1, u"配对码必须是 6 位数字", u"A pairing code has 6 digits."},
    {"answered"_L1, u"该请求已经处理过了", u"This request has already been answered."},
    {"mismatch"_L1, u"新设备的密钥不一致，请勿允许它加入", u"The new device's keys don't match. Don't let it join."},
    {"busy"_L1, u"正在验证上一次输入", u"The previous answer is still being checked."},
    {"not-pairing"_L1, u"这台 Mac 当前不在配对中", u"This Mac isn't being paired."},
    {"no-reset"_L1, u"没有需要接受的加密重置", u"There is no encryption reset to accept."},
    {"no-alarm"_L1, u"没有这条安全提醒", u"There is no such alarm."},
    {"bad-request"_L1, u"请求格式不正确", u"The request isn't a JSON object."},
};

// The sentence for a failure, in the agent's language.
QString textOf(const QString &code, const Scenario &scenario) {
    const bool zh = agentSpeaksChinese(scenario);
    for (const Failure &failure : FAILURES)
        if (failure.code == code)
            return (zh ? failure.zh : failure.en).toString();
    return (zh ? u"操作失败（%1）"_s : u"That failed (%1)."_s).arg(code);
}

HttpAnswer refusal(const QString &code, const Scenario &scenario, int status = 200) {
    return HttpAnswer::json({{u"ok"_s, false}, {u"code"_s, code}, {u"error"_s, textOf(code, scenario)}}, status);
}

// What the scenario says about this answer instead of what would be right; empty when it says nothing.
QJsonObject forcedReply(const Scenario &scenario, const QByteArray &path) {
    const QJsonObject replies = scenario.section("e2ee"_L1).value("replies"_L1).toObject();
    const QString own = QString::fromLatin1(path);
    const QString key = replies.contains(own) ? own : u"*"_s;
    const QJsonObject entry = replies.value(key).toObject();
    return !entry.isEmpty() && scenario.takeTurn(u"e2ee "_s + key, entry) ? entry : QJsonObject{};
}

// The answer that a forced reply spells out; nothing when it leaves the answer to the state.
std::optional<QJsonObject> spelledOut(const QJsonObject &forced, const Scenario &scenario) {
    if (forced.contains("reply"_L1))
        return forced.value("reply"_L1).toObject();
    const QString code = forced.value("code"_L1).toString();
    if (code.isEmpty() && !forced.contains("error"_L1))
        return std::nullopt;
    QJsonObject answer{{u"ok"_s, false}, {u"error"_s, forced.value("error"_L1).toString(textOf(code, scenario))}};
    if (!code.isEmpty())
        answer.insert("code"_L1, code);
    return answer;
}

} // namespace

QJsonObject AgentEncryption::report(bool online) const { return encryption.report(online, checking); }

void AgentEncryption::answer(const HttpRequest &request, const Scenario &scenario, const Respond &respond) {
    const QJsonDocument document = QJsonDocument::fromJson(request.body);
    if (!document.isObject())
        return respond(refusal(u"bad-request"_s, scenario, 400));
    const QJsonObject body = document.object();
    const QByteArray path = request.path();
    const QString device = path == PAIR_PATH ? body.value("pendingId"_L1).toString() : QString();
    if (checking.contains(device))
        return respond(refusal(u"busy"_s, scenario));
    const QJsonObject forced = forcedReply(scenario, path);
    const int delay = milliseconds(forced, "delayMs"_L1);
    if (delay == 0)
        return answerNow(path, body, scenario, forced, respond);
    if (!device.isEmpty())
        checking.insert(device);
    QTimer::singleShot(delay, &timers, [=, this] {
        checking.remove(device);
        answerNow(path, body, scenario, forced, respond);
    });
}

void AgentEncryption::answerNow(const QByteArray &path, const QJsonObject &body, const Scenario &scenario,
                                const QJsonObject &forced, const Respond &respond) {
    if (forced.value("silent"_L1).toBool())
        return;
    if (const auto answer = spelledOut(forced, scenario))
        return respond(HttpAnswer::json(*answer));
    const QString failure = encryption.answer(path, body);
    respond(failure.isEmpty() ? HttpAnswer::json({{u"ok"_s, true}}) : refusal(failure, scenario));
}

} // namespace korvel::sim
