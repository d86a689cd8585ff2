#include "simulator/account_server_program.h"

#include "simulator/account_server.h"
#include "simulator/file_lock.h"
#include "simulator/files.h"
#include "simulator/home_watch.h"
#include "simulator/loopback_socket.h"
#include "simulator/record_lock.h"
#include "simulator/unix_signals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileSystemWatcher>
#include <QProcess>

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

int storedPort(const HomePaths &paths) {
    QFile file(paths.serverPort());
    return file.open(QIODevice::ReadOnly) ? file.readAll().toInt() : 0;
}

} // namespace

int serveAccounts(const ProgramCall &call) {
    const int port = AccountServerProcess(call.paths).port();
    AccountServer server(call.paths);
    const auto end = [](int) { QCoreApplication::exit(0); };
    const UnixSignals signalHandling({SIGTERM, SIGINT}, end);
    // From before the lock on, so that no change is missed. The file itself is replaced each time.
    QFileSystemWatcher scenario({call.paths.state()});
    QObject::connect(&scenario, &QFileSystemWatcher::directoryChanged, &scenario, [&] { server.listen(port); });
    // Only one holds the lock, and only one that serves: others may rely on it.
    if (!server.listen(port) || takeRecordLock(call.paths.serverLock()) < 0) {
        std::fprintf(stderr, "korvel-account-server: cannot serve at 127.0.0.1:%d\n", port);
        return 1;
    }
    const HomeWatch watch(call.paths, call.paths.serverLock(), [&] { end(0); });
    return QCoreApplication::exec();
}

int AccountServerProcess::port() const {
    if (const int port = storedPort(paths); port != 0)
        return port;
    QDir().mkpath(paths.state());
    const FileLock lock(paths.serverPort() + ".lock"_L1);
    if (const int port = storedPort(paths); port != 0)
        return port;
    const int socket = boundLoopbackSocket(0);
    const int port = portOf(socket);
    ::close(socket);
    return replaceFile(paths.serverPort(), QByteArray::number(port)) ? port : 0;
}

QString AccountServerProcess::address() const { return u"localhost:%1"_s.arg(port()); }

bool AccountServerProcess::start(const QProcessEnvironment &environment) const {
    if (recordLockHolder(paths.serverLock()) != 0)
        return true;
    QDir().mkpath(paths.state());
    QProcess server;
    server.setProgram(standInRoot() + "/usr/local/bin/korvel-account-server"_L1);
    server.setProcessEnvironment(environment);
    // The caller's pipes must not stay open in it.
    server.setStandardInputFile(QProcess::nullDevice());
    server.setStandardOutputFile(QProcess::nullDevice());
    server.setStandardErrorFile(paths.state() + "/server.log"_L1, QIODevice::Append);
    qint64 started = 0;
    if (!server.startDetached(&started))
        return false;
    const auto hasEnded = [&] { return ::kill(pid_t(started), 0) != 0 && errno == ESRCH; };
    waitUntil([&] { return recordLockHolder(paths.serverLock()) != 0 || hasEnded(); });
    return recordLockHolder(paths.serverLock()) != 0;
}

bool AccountServerProcess::stop() const {
    const pid_t process = recordLockHolder(paths.serverLock());
    if (process == 0)
        return true;
    ::kill(process, SIGTERM);
    return waitUntil([&] { return recordLockHolder(paths.serverLock()) != process; });
}

void AccountServerProcess::awaitScenario() const {
    const bool refuses = Scenario::read(paths).section("server"_L1).value("refuse"_L1).toBool();
    const int port = storedPort(paths);
    waitUntil([&] { return recordLockHolder(paths.serverLock()) == 0 || isPortTaken(port) != refuses; });
}

} // namespace korvel::sim
