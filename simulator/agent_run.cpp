#include "simulator/agent_program.h"

#include "simulator/agent_interface.h"
#include "simulator/files.h"
#include "simulator/unix_signals.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int DEFAULT_PORT = 8790;

int portToListenOn() {
    const int port = qEnvironmentVariableIntValue("KORVEL_HOOK_PORT");
    return port > 0 ? port : DEFAULT_PORT;
}

void listenOrExit(AgentInterface &interface) {
    const int port = portToListenOn();
    const bool listening = interface.listen(port);
    std::fprintf(stderr, "%s %s 127.0.0.1:%d\n", qUtf8Printable(agentVersion()),
                 listening ? "listens on" : "cannot listen on", port);
    if (!listening)
        QCoreApplication::exit(1);
}

} // namespace

int runAgent(const ProgramCall &call) {
    const QJsonObject life = Scenario::read(call.paths).section("agent"_L1);
    const UnixSignals signalHandling({SIGTERM, SIGINT}, [](int) { QCoreApplication::exit(0); });
    AgentInterface interface(call.paths, AgentConfig::ofThisProcess());
    QTimer::singleShot(milliseconds(life, "startDelayMs"_L1), QCoreApplication::instance(),
                       [&interface] { listenOrExit(interface); });
    return QCoreApplication::exec();
}

} // namespace korvel::sim
