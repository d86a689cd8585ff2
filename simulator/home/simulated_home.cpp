#include "simulator/home/simulated_home.h"

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"
#include "simulator/home/home_locks.h"
#include "simulator/home/loopback_socket.h"

#include <QDir>
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
    const bool boundHere = readObject(configPath()).value("server"_L1).toString() == accountServer();
    Document(paths.ports()).patch({{u"agent"_s, portOf(agentPort)}, {u"server"_s, portOf(serverPort)}});
    if (boundHere) // by an earlier owner of the home
        AgentConfig(configPath()).change({{u"server"_s, accountServer()}});
}

SimulatedHome::~SimulatedHome() {
    shutDown();
    ::close(ownerLock);
    ::close(serverPort);
    ::close(agentPort);
}

} // namespace korvel::sim
