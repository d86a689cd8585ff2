// Faults and certificates as they reach a client: a journey that meets another fault than it names passes for nothing.

#include "simulator/home_test.h"

#include "simulator/home/files.h"

#include <QJsonDocument>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <arpa/inet.h>
#include <functional>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korvel::sim {
namespace {

using namespace Qt::StringLiterals;

constexpr int PATIENCE_MS = 20'000;

/// What came back on a fresh connection that asked to be closed.
struct Reply {
    enum class End { Closed, Reset, Silent } end = End::Closed;
    QByteArray head = {};
    QByteArray body = {};

    QJsonDocument json() const { return QJsonDocument::fromJson(body); }
    bool isOk() const { return json().object().value("ok"_L1) == QJsonValue(true); }
    qsizetype announced() const {
        const QByteArray name = "Content-Length: ";
        const qsizetype at = head.indexOf(name) + name.size();
        return head.mid(at, head.indexOf('\r', at) - at).toLongLong();
    }
};

Reply replyOf(const QByteArray &all, Reply::End end) {
    const qsizetype split = all.indexOf("\r\n\r\n");
    return {
        .end = end, .head = split < 0 ? all : all.first(split), .body = split < 0 ? QByteArray() : all.mid(split + 4)};
}

/// Sends to a port of 127.0.0.1 and reads to the end; with system calls, because Qt calls a reset a close.
Reply exchange(int port, const QByteArray &request, int patienceMs) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    QByteArray all, block(64 << 10, '\0');
    Reply::End end = Reply::End::Silent;
    if (::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
        ::send(fd, request.constData(), size_t(request.size()), 0) == request.size()) {
        pollfd readable{fd, POLLIN, 0};
        ssize_t got = 0;
        while (::poll(&readable, 1, patienceMs) == 1 && (got = ::recv(fd, block.data(), size_t(block.size()), 0)) > 0)
            all += block.first(got);
        if (readable.revents != 0)
            end = got == 0 ? Reply::End::Closed : Reply::End::Reset;
    }
    ::close(fd);
    return replyOf(all, end);
}

struct WireTest : HomeTest {
    Reply health(int patienceMs) {
        const QByteArray token = readObject(home.configPath()).value("localToken"_L1).toString().toUtf8();
        return exchange(home.port(),
                        "GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\nX-Korvel-Token: " + token +
                            "\r\n\r\n",
                        patienceMs);
    }
    /// A sign-in with the right password, and what a client that trusts the home's authority alone finds wrong.
    Reply signIn(QList<QSslError::SslError> *refusals = nullptr) {
        QSslSocket socket;
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setCaCertificates(QSslCertificate::fromPath(home.authorityFile()));
        socket.setSslConfiguration(configuration);
        if (refusals)
            QObject::connect(&socket, &QSslSocket::sslErrors, &socket, [refusals](const QList<QSslError> &errors) {
                for (const QSslError &error : errors)
                    refusals->append(error.error());
            });
        const QString port = home.accountServer().section(u':', 1);
        socket.connectToHostEncrypted(u"localhost"_s, port.toUShort(), QIODevice::ReadWrite,
                                      QAbstractSocket::IPv4Protocol);
        if (!socket.waitForEncrypted(PATIENCE_MS))
            return {};
        const QByteArray body = R"({"username":"sam@example.com","password":"open sesame","host":"Mini"})";
        socket.write("POST /v1/agents/login HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Length: " +
                     QByteArray::number(body.size()) + "\r\n\r\n" + body);
        while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(PATIENCE_MS)) {
        }
        return replyOf(socket.readAll(), Reply::End::Closed);
    }
};

TEST_F(WireTest, FaultsReachTheWireAsTheScenarioNamesThem) {
    home.setScenario({{u"connectMs"_s, 0}});
    ASSERT_TRUE(startAgent(home) && eventually([&] { return health(PATIENCE_MS).isOk(); }));
    using End = Reply::End;
    const struct {
        QString mode;
        QJsonObject more;
        std::function<bool(const Reply &)> holds;
    } cases[] = {
        {u"silent"_s, {}, [](const Reply &r) { return r.end == End::Silent && r.head.isEmpty(); }},
        {u"close"_s, {}, [](const Reply &r) { return r.end == End::Closed && r.head.isEmpty(); }},
        {u"reset"_s, {}, [](const Reply &r) { return r.end == End::Reset && r.head.isEmpty(); }},
        {u"not-http"_s, {}, [](const Reply &r) { return !r.head.startsWith("HTTP/"); }},
        {u"garbage"_s, {}, [](const Reply &r) { return r.head.startsWith("HTTP/1.1 200") && r.json().isNull(); }},
        {u"not-utf8"_s, {}, [](const Reply &r) { return !r.body.isEmpty() && !r.body.isValidUtf8(); }},
        {u"array"_s, {}, [](const Reply &r) { return r.json().isArray(); }},
        {u"wrong-types"_s, {}, [](const Reply &r) { return r.json().object().value("ok"_L1).isString(); }},
        {u"deep"_s, {}, [](const Reply &r) { return r.body.count('[') == 100'000 && r.announced() == r.body.size(); }},
        {u"html"_s, {}, [](const Reply &r) { return r.head.contains(" 500 ") && r.head.contains("text/html"); }},
        {u"truncate"_s, {}, [](const Reply &r) { return !r.body.isEmpty() && r.body.size() < r.announced(); }},
        {u"huge"_s, {{u"bytes"_s, 900'000}}, [](const Reply &r) { return r.body.size() == 900'000 && r.isOk(); }},
        {u"drip"_s, {{u"ms"_s, 1}}, [](const Reply &r) { return r.isOk(); }},
        {{}, {{u"delayMs"_s, 20}}, [](const Reply &r) { return r.isOk(); }},
    };
    for (const auto &c : cases) {
        QJsonObject fault = c.more;
        fault.insert(u"mode"_s, c.mode);
        home.setScenario({{u"connectMs"_s, 0}, {u"faults"_s, QJsonObject{{u"/health"_s, fault}}}});
        const Reply reply = health(c.mode == "silent"_L1 ? 200 : PATIENCE_MS);
        EXPECT_TRUE(c.holds(reply)) << qPrintable(c.mode) << ": " << reply.head.constData() << "\n"
                                    << reply.body.left(200).constData();
    }
}

TEST_F(WireTest, AFaultOfTheAccountServerLeavesUndoneWhatWasAskedFor) {
    ASSERT_TRUE(home.startAccountServer());
    for (const QJsonObject &fault :
         {QJsonObject{{u"mode"_s, u"redirect"_s}, {u"location"_s, u"https://localhost:1/x"_s}, {u"status"_s, 308}},
          QJsonObject{{u"mode"_s, u"response"_s}, {u"status"_s, 503}, {u"body"_s, u"later"_s}},
          QJsonObject{{u"mode"_s, u"reset"_s}}}) {
        home.setScenario({{u"server"_s, QJsonObject{{u"faults"_s, QJsonObject{{u"*"_s, fault}}}}}});
        const Reply reply = signIn();
        const int status = fault.value("status"_L1).toInt();
        EXPECT_TRUE(status == 0 ? reply.head.isEmpty() : reply.head.contains(' ' + QByteArray::number(status) + ' '));
    }
    EXPECT_TRUE(home.accounts().liveCredentials().isEmpty());
    home.setScenario({});
    EXPECT_TRUE(signIn().head.startsWith("HTTP/1.1 200"));
    EXPECT_EQ(home.accounts().liveCredentials().size(), 1);
}

TEST_F(WireTest, ACertificateIsWrongInTheOneWayThatTheScenarioNames) {
    ASSERT_TRUE(home.startAccountServer());
    const std::pair<QString, QList<QSslError::SslError>> cases[] = {
        {u"good"_s, {}},
        {u"expired"_s, {QSslError::CertificateExpired}},
        {u"not-yet-valid"_s, {QSslError::CertificateNotYetValid}},
        {u"unknown-authority"_s,
         {QSslError::UnableToGetLocalIssuerCertificate, QSslError::UnableToVerifyFirstCertificate}},
        {u"wrong-host"_s, {QSslError::HostNameMismatch}},
    };
    for (const auto &[kind, expected] : cases) {
        home.setScenario({{u"server"_s, QJsonObject{{u"certificate"_s, kind}}}});
        QList<QSslError::SslError> refusals;
        EXPECT_EQ(signIn(&refusals).head.isEmpty(), !expected.isEmpty()) << qPrintable(kind);
        EXPECT_EQ(refusals, expected) << qPrintable(kind);
    }
}

} // namespace
} // namespace korvel::sim
