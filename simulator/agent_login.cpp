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

SignInOutcome outcomeOf(const HomePaths &paths, const QJsonObject &request, const QJsonObject &entry) {
    if (entry.contains("reply"_L1))
        return {entry.value("reply"_L1).toObject()};
    const bool chinese = isChinese(qEnvironmentVariable("KORVEL_LANG"));
    SignInOutcome outcome;
    AccountStore(paths).change([&](AccountBook &book, qint64 now) {
        outcome = performSignIn(book, request, chinese, now);
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

    for (const QJsonValue line : entry.value("noise"_L1).toArray())
        printLine(line.toString().toUtf8());
    pauseFor(milliseconds(entry, "delayMs"_L1));
    if (!entry.value("silent"_L1).toBool()) {
        const SignInOutcome outcome = outcomeOf(call.paths, request, entry);
        if (!outcome.account.isEmpty())
            bindMac(call.paths, AgentConfig::ofThisProcess(), outcome.account);
        printLine(QJsonDocument(outcome.reply).toJson(QJsonDocument::Compact));
    }
    return 0;
}

} // namespace korvel::sim
