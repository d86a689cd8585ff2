#include "home_fixture.h"

#include "simulator/files.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

int connected(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return socket;
    ::close(socket);
    return -1;
}

End readAnswer(int socket, QByteArray &answer, int patienceMs, qsizetype enough) {
    QByteArray block(64 * 1024, '\0');
    while (answer.size() < enough) {
        pollfd readable{socket, POLLIN, 0};
        if (::poll(&readable, 1, patienceMs) == 0)
            return End::Silent;
        const ssize_t size = ::recv(socket, block.data(), size_t(block.size()), 0);
        if (size < 0)
            return End::Reset;
        if (size == 0)
            return answer.isEmpty() ? End::Closed : End::Answered;
        answer += block.first(size);
    }
    return End::Answered;
}

QByteArray startOf(const QByteArray &method, const QByteArray &path, const QByteArray &token) {
    const QByteArray start = method + ' ' + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n";
    return token.isEmpty() ? start : start + "X-Korvel-Token: " + token + "\r\n";
}

Exchange exchange(int port, const QByteArray &request, int patienceMs, qsizetype enough) {
    const int socket = connected(port);
    if (socket < 0)
        return {{}, {}, End::Closed};
    EXPECT_EQ(::send(socket, request.constData(), size_t(request.size()), 0), request.size());
    QByteArray answer;
    const End end = readAnswer(socket, answer, patienceMs, enough);
    ::close(socket);
    const qsizetype split = answer.indexOf("\r\n\r\n");
    if (split < 0)
        return {answer, {}, end};
    return {answer.first(split), answer.mid(split + 4), end};
}

} // namespace

Exchange get(int port, const QByteArray &path, const QByteArray &token, int patienceMs, qsizetype enough) {
    return exchange(port, startOf("GET", path, token) + "\r\n", patienceMs, enough);
}

Exchange post(int port, const QByteArray &path, const QByteArray &token, const QByteArray &body, int patienceMs) {
    const QByteArray fields =
        "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
    return exchange(port, startOf("POST", path, token) + fields + body, patienceMs, 1 << 20);
}

HomeTest::HomeTest() : home(folder.path() + "/home"_L1) {
    EXPECT_TRUE(home.signIn(u"sam@example.com"_s));
    EXPECT_TRUE(home.installJobFile());
}

bool HomeTest::startAgent(SimulatedHome &which) {
    EXPECT_EQ(which.launchctl({u"bootstrap"_s, domain, which.jobFilePath()}), 0);
    return eventually([&] { return get(which.port(), "/", "").end == End::Answered; });
}

QJsonObject HomeTest::config() const { return readObject(home.configPath()).value_or(QJsonObject{}); }

QByteArray HomeTest::token() const { return config().value("localToken"_L1).toString().toUtf8(); }

HomeTest::Run HomeTest::run(const QString &program, const QStringList &arguments, const QByteArray &input) {
    QProcess process;
    process.setProcessEnvironment(home.environment());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(20'000)) << qPrintable(program);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace korvel::sim
