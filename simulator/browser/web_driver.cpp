#include "simulator/browser/web_driver.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpSocket>

#include <csignal>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int PATIENCE_MS = 60'000;
constexpr int END_WITHIN_MS = 5000;

// The browser's files belong below `folder`, whoever it runs for.
QProcessEnvironment environmentIn(const QString &folder) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, folder);
    environment.insert(u"TMPDIR"_s, folder);
    for (const QLatin1StringView name : {"XDG_CONFIG_HOME"_L1, "XDG_CACHE_HOME"_L1, "XDG_DATA_HOME"_L1, "DISPLAY"_L1,
                                         "WAYLAND_DISPLAY"_L1, "DBUS_SESSION_BUS_ADDRESS"_L1})
        environment.remove(name);
    return environment;
}

// Reads a whole answer; its body, or nothing when the connection ended or time was up before.
std::optional<QByteArray> bodyFrom(QTcpSocket &socket, const QDeadlineTimer &deadline) {
    static const QRegularExpression LENGTH(u"\r\ncontent-length: *([0-9]+)\r\n"_s,
                                           QRegularExpression::CaseInsensitiveOption);
    QByteArray answer;
    while (!deadline.hasExpired()) {
        const qsizetype split = answer.indexOf("\r\n\r\n");
        const auto length = LENGTH.match(QString::fromLatin1(answer.left(split + 2)));
        if (split >= 0 && length.hasMatch() && answer.size() - split - 4 >= length.captured(1).toLongLong())
            return answer.mid(split + 4);
        if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            break;
        answer += socket.readAll();
    }
    return std::nullopt;
}

} // namespace

WebDriver::WebDriver() {
    program.setProcessEnvironment(environmentIn(files.path()));
    program.setStandardErrorFile(QProcess::nullDevice());
    // A group of its own, so that the browser can be ended with it.
    program.setChildProcessModifier([] { ::setpgid(0, 0); });
    program.start(u"chromedriver"_s, {u"--port=0"_s});
    if (program.waitForStarted(PATIENCE_MS))
        awaitPort();
    if (port == 0)
        trouble = u"chromedriver does not start: "_s + program.errorString();
}

void WebDriver::awaitPort() {
    static const QRegularExpression PORT(u"started successfully on port ([0-9]+)"_s);
    const QDeadlineTimer deadline(PATIENCE_MS);
    QByteArray said;
    while (port == 0 && !deadline.hasExpired() && program.waitForReadyRead(int(deadline.remainingTime()))) {
        said += program.readAll();
        port = PORT.match(QString::fromLocal8Bit(said)).captured(1).toInt();
    }
}

WebDriver::~WebDriver() {
    const auto group = pid_t(program.processId());
    if (group <= 0)
        return;
    ::kill(-group, SIGTERM);
    program.waitForFinished(END_WITHIN_MS);
    ::kill(-group, SIGKILL); // what is left of the browser
    program.waitForFinished(END_WITHIN_MS);
}

std::optional<QJsonValue> WebDriver::send(const QByteArray &method, const QString &path, const QJsonObject &body) {
    const QDeadlineTimer deadline(PATIENCE_MS);
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.1"_s, quint16(port));
    const QByteArray content = method == "POST" ? QJsonDocument(body).toJson(QJsonDocument::Compact) : QByteArray();
    socket.write(method + ' ' + path.toLatin1() + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port) +
                 "\r\nConnection: close\r\nContent-Type: application/json; charset=utf-8\r\nContent-Length: " +
                 QByteArray::number(content.size()) + "\r\n\r\n" + content);
    const auto answer = bodyFrom(socket, deadline);
    const QJsonValue value = QJsonDocument::fromJson(answer.value_or(QByteArray())).object().value("value"_L1);
    const bool failed = !answer || value.toObject().contains("error"_L1);
    trouble = !failed ? QString() : answer ? value.toObject().value("message"_L1).toString() : socket.errorString();
    return failed ? std::nullopt : std::optional(value);
}

} // namespace korvel::sim
