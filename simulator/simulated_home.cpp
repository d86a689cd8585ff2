#include "simulator/simulated_home.h"

#include "simulator/agent_config.h"
#include "simulator/files.h"
#include "simulator/loopback_socket.h"
#include "simulator/record_lock.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QString &created(const QString &directory) {
    for (const QLatin1StringView folder : {"/Library/Logs"_L1, "/.simulator"_L1})
        QDir().mkpath(directory + folder);
    return directory;
}

} // namespace

SimulatedHome::SimulatedHome(const QString &directory)
    : Home(created(directory)), agentPort(boundLoopbackSocket(0)), serverPort(boundLoopbackSocket(0)),
      ownerLock(takeRecordLock(paths.ownerLock())) {
    const AgentConfig config(QFileInfo(configPath()).path());
    const bool boundHere = config.read().value("server"_L1).toString() == accountServer();
    replaceFile(paths.portFile(), QByteArray::number(portOf(agentPort)));
    replaceFile(paths.serverPort(), QByteArray::number(portOf(serverPort)));
    if (boundHere) // before the home was taken over
        config.change({{u"server"_s, accountServer()}});
}

SimulatedHome::~SimulatedHome() {
    shutDown();
    ::close(ownerLock);
    ::close(serverPort);
    ::close(agentPort);
}

} // namespace korvel::sim
