#include "simulator/server/account_server_program.h"

#include "base/unix_process.h"
#include "simulator/home/files.h"
#include "simulator/home/home_locks.h"
#include "simulator/home/loopback_socket.h"
#include "simulator/server/account_server.h"

#include <QCoreApplication>
#include <QFileSystemWatcher>
#include <csignal>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

int serveAccounts(const ProgramCall &call) {
    const int port = AccountServerProcess(call.paths).port();
    AccountServer server(call.paths);
    const auto end = [] { QCoreApplication::exit(0); };
    const UnixSignals signalHandling({SIGTERM, SIGINT}, [&](int) { end(); });
    // Watches before it locks, so that no change is missed. The file itself is replaced by each change.
    QFileSystemWatcher scenario({call.paths.state({})});
    QObject::connect(&scenario, &QFileSystemWatcher::directoryChanged, &scenario, [&] { server.listen(port); });
    // Locks after it listens: others rely on the holder of the lock to serve.
    if (!server.listen(port) || takeRecordLock(call.paths.serverLock()) < 0) {
        std::fprintf(stderr, "korvel-account-server: cannot serve at 127.0.0.1:%d\n", port);
        return 1;
    }
    const HomeWatch watch(call.paths, call.paths.serverLock(), end);
    return QCoreApplication::exec();
}

int AccountServerProcess::port() const {
    const Document ports(paths.ports());
    if (const int port = ports.read().value("server"_L1).toInt(); port != 0)
        return port;
    ports.change([](QJsonObject &known) {
        const int socket = boundLoopbackSocket(0);
        if (!known.contains("server"_L1))
            known.insert("server"_L1, portOf(socket));
        ::close(socket);
        return true;
    });
    return ports.read().value("server"_L1).toInt();
}

pid_t AccountServerProcess::process() const { return recordLockHolder(paths.serverLock()); }

bool AccountServerProcess::start(const QProcessEnvironment &environment) const {
    if (process() != 0)
        return true;
    const pid_t started =
        startLasting(u"/usr/local/bin/korvel-account-server"_s, {}, environment, paths.state(u"server.log"_s));
    waitUntil([&] { return process() != 0 || started == 0 || !isRunning(started); });
    return process() != 0;
}

bool AccountServerProcess::stop() const {
    const pid_t running = process();
    return running == 0 || (::kill(running, SIGTERM) == 0 && waitUntil([&] { return process() != running; }));
}

void AccountServerProcess::awaitScenario() const {
    const bool refuses = Scenario(paths).section("server"_L1).value("refuse"_L1).toBool();
    waitUntil([&] { return process() == 0 || isPortTaken(port()) != refuses; });
}

} // namespace korvel::sim
