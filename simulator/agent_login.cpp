#include "simulator/agent_program.h"

#include "simulator/files.h"
#include "simulator/mac_binding.h"
#include "simulator/scenario.h"
#include "simulator/sign_in_operations.h"
#include "simulator/wording.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

void printLine(const QByteArray &line) {
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

// Only a signal ends it.
[[noreturn]] void hang() {
    for (;;)
        pauseFor(60'000);
}

// Whether a reply that the scenario spells out signs this Mac in.
bool signsIn(const QString &operation, const QJsonObject &reply) {
    return reply.value("ok"_L1).toBool() && operation != "send-code"_L1;
}

QString accountIn(const QJsonObject &request) {
    const QString name = request.value("username"_L1).toString();
    return name.isEmpty() ? request.value("phone"_L1).toString() : name;
}

SignInOutcome outcomeOf(const HomePaths &paths, const QJsonObject &request, const QJsonObject &entry) {
    if (entry.contains("reply"_L1)) {
        const QJsonObject reply = entry.value("reply"_L1).toObject();
        return {reply, signsIn(request.value("op"_L1).toString(), reply) ? accountIn(request) : QString()};
    }
    const SignInRules rules{.chinese = isChinese(qEnvironmentVariable("KORVEL_LANG")),
                            .nextSeconds = entry.value("next"_L1).toInt(60),
                            .resetSignsIn = entry.value("signsIn"_L1).toBool(true),
                            .shownUser = entry.value("user"_L1).toString()};
    SignInOutcome outcome;
    AccountStore(paths).change([&](AccountBook &book, qint64 now) {
        outcome = performSignIn(book, request, rules, now);
        return true;
    });
    return outcome;
}

} // namespace

int agentLogin(const ProgramCall &call, const QByteArray &input) {
    const QJsonDocument document = QJsonDocument::fromJson(input);
    if (!document.isObject()) {
        printLine(R"({"ok":false,"error":"The request is not a JSON object"})");
        return 1;
    }
    const QJsonObject request = document.object();
    const QString operation = request.value("op"_L1).toString();
    const QJsonObject all = Scenario::read(call.paths).section("login"_L1);
    const QJsonObject entry = all.value(all.contains(operation) ? operation : u"*"_s).toObject();
    const bool hangs = entry.value("hang"_L1).toBool();
    const bool replies = !entry.value("silent"_L1).toBool() && (!hangs || entry.contains("reply"_L1));

    for (const QJsonValue line : entry.value("noise"_L1).toArray())
        printLine(line.toString().toUtf8());
    pauseFor(milliseconds(entry, "delayMs"_L1));
    if (replies) {
        const SignInOutcome outcome = outcomeOf(call.paths, request, entry);
        if (!outcome.account.isEmpty())
            bindMac(call.paths, AgentConfig::ofThisProcess(), outcome.account);
        printLine(QJsonDocument(outcome.reply).toJson(QJsonDocument::Compact));
    }
    if (hangs)
        hang();
    return entry.value("exit"_L1).toInt();
}

} // namespace korvel::sim
