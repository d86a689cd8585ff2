// Floods the real tray from its agent's port. Prints for each flood the longest time that the main thread was blocked
// and the memory that the tray used.

#include "benchmarks/flood_cases.h"
#include "benchmarks/main_thread.h"
#include "benchmarks/process_cost.h"
#include "simulator/home/simulated_home.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;
using namespace korvel::bench;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

bool waitUntil(const std::function<bool()> &condition, milliseconds limit) {
    QElapsedTimer clock;
    clock.start();
    QTimer checks;
    checks.start(10);
    while (!condition() && clock.elapsed() < limit.count())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

void pass(milliseconds time) {
    waitUntil([] { return false; }, time);
}

/// Listens in place of the agent.
class FloodingAgent {
public:
    FloodingAgent() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            QTcpSocket *socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { respond(*socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QTcpSocket::deleteLater);
        });
    }
    quint16 port() const { return server.serverPort(); }

    Flood flood = calm();
    int polls = 0; ///< Requests to /health.

private:
    void respond(QTcpSocket &socket) {
        const QByteArray request = socket.readAll();
        const bool isPoll = request.contains(" /health ");
        polls += isPoll ? 1 : 0;
        const QByteArray &body = isPoll ? flood.health : flood.perms;
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }

    QTcpServer server;
};

/// Opens the tray's menu, as a left click on its item does.
void openMenu(const QString &service) {
    QDBusMessage click = QDBusMessage::createMethodCall(service, u"/StatusNotifierItem"_s,
                                                        u"org.kde.StatusNotifierItem"_s, u"Activate"_s);
    click.setArguments({300, 300});
    QDBusConnection::sessionBus().send(click);
}

void measure(const Flood &flood, FloodingAgent &agent, const QString &tray, const QProcessEnvironment &environment) {
    agent.flood = calm();
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    const int before = agent.polls;
    process.start(tray, QStringList());
    waitUntil([&] { return agent.polls >= before + 2; }, 20s);
    const qint64 pid = process.processId();
    QString item;
    if (!waitUntil([&] { return !(item = itemService(pid)).isEmpty(); }, 20s))
        std::fprintf(stderr, "%s: no item in the panel\n", qUtf8Printable(flood.name));
    const qint64 held = residentOf(pid).now;
    forgetPeak(pid);
    {
        const MainThread thread(pid, item);
        agent.flood = flood;
        const int calmPolls = agent.polls;
        waitUntil([&] { return agent.polls >= calmPolls + 2; }, 20s);
        openMenu(item); // also fetches the permissions
        waitUntil([&] { return agent.polls >= calmPolls + 4; }, 20s);
        pass(500ms);
        const double peak = static_cast<double>(residentOf(pid).peak - held) / 1024;
        std::printf("%-44s %9.2f %9.1f %9.1f\n", qUtf8Printable(flood.name),
                    static_cast<double>(flood.health.size() + flood.perms.size()) / 1e6, thread.longestBlock(), peak);
        std::fflush(stdout);
    }
    process.terminate();
    if (!process.waitForFinished(20000))
        process.kill();
    process.waitForFinished(1000);
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{u"tray"_s, u"The tray's program."_s, u"program"_s},
                       {u"only"_s, u"The floods whose name holds this."_s, u"text"_s}});
    parser.process(app);
    const QTemporaryDir folder;
    korvel::sim::SimulatedHome home(folder.path());
    const QString tray = home.assembleBundle(QFileInfo(parser.value(u"tray"_s)).absoluteFilePath());
    if (tray.isEmpty() || !home.signIn(u"ann"_s) || !home.installJobFile()) {
        std::fprintf(stderr, "the simulated home could not be prepared\n");
        return 1;
    }
    FloodingAgent agent;
    QProcessEnvironment environment = home.environment();
    environment.insert(u"KORVEL_HOOK_PORT"_s, QString::number(agent.port()));
    std::printf("%-44s %9s %9s %9s\n", "", "MB", "block, ms", "peak, MiB");
    for (const Flood &flood : floods())
        if (flood.name.contains(parser.value(u"only"_s)))
            measure(flood, agent, tray, environment);
    return 0;
}
