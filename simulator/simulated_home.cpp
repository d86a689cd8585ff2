#include "simulator/simulated_home.h"

#include "simulator/files.h"
#include "simulator/loopback_socket.h"

#include <QDir>

#include <unistd.h>

namespace korvel::sim {

namespace {

const QString &created(const QString &directory) {
    QDir().mkpath(directory + QStringLiteral("/Library/Logs"));
    return directory;
}

} // namespace

SimulatedHome::SimulatedHome(const QString &directory) : Home(created(directory)), reservation(boundLoopbackSocket(0)) {
    replaceFile(paths.portFile(), QByteArray::number(portOf(reservation)));
}

SimulatedHome::~SimulatedHome() {
    shutDown();
    ::close(reservation);
}

} // namespace korvel::sim
