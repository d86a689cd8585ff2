#include "simulator/agent_program.h"

#include "simulator/agent_config.h"
#include "simulator/files.h"
#include "simulator/scenario.h"

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

bool bindsThisMac(const QString &operation) {
    return operation == "login"_L1 || operation == "login-code"_L1 || operation == "register"_L1;
}

QString accountIn(const QJsonObject &request) {
    const QString name = request.value("username"_L1).toString();
    return name.isEmpty() ? request.value("phone"_L1).toString() : name;
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
    const QJsonObject reply = entry.value("reply"_L1).toObject({{u"ok"_s, true}});
    const bool hangs = entry.value("hang"_L1).toBool();
    const bool replies = !entry.value("silent"_L1).toBool() && (!hangs || entry.contains("reply"_L1));

    for (const QJsonValue line : entry.value("noise"_L1).toArray())
        printLine(line.toString().toUtf8());
    pauseFor(milliseconds(entry, "delayMs"_L1));
    if (replies && bindsThisMac(operation) && reply.value("ok"_L1).toBool())
        AgentConfig::ofThisProcess().signIn(accountIn(request), request.value("server"_L1).toString());
    if (replies)
        printLine(QJsonDocument(reply).toJson(QJsonDocument::Compact));
    if (hangs)
        hang();
    return entry.value("exit"_L1).toInt();
}

} // namespace korvel::sim
