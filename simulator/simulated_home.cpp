#include "simulator/simulated_home.h"

#include "simulator/files.h"
#include "simulator/loopback_socket.h"
#include "simulator/record_lock.h"

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
    : Home(created(directory)), reservation(boundLoopbackSocket(0)), ownerLock(takeRecordLock(paths.ownerLock())) {
    replaceFile(paths.portFile(), QByteArray::number(portOf(reservation)));
}

SimulatedHome::~SimulatedHome() {
    shutDown();
    ::close(ownerLock);
    ::close(reservation);
}

} // namespace korvel::sim
