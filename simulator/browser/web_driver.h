#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace korvel::sim {

// A running chromedriver, spoken to in W3C WebDriver over 127.0.0.1, and all that it starts: it ends with the object.
// Needs no event loop. No call takes longer than 60 seconds.
class WebDriver {
public:
    // Starts it on a port that is free; isRunning() tells whether it came up.
    WebDriver();
    ~WebDriver();
    WebDriver(const WebDriver &) = delete;
    WebDriver &operator=(const WebDriver &) = delete;

    bool isRunning() const { return port != 0; }
    // A folder for the browser's files, removed in the end.
    QString folder() const { return files.path(); }
    // Sends a command and gives the "value" of its reply. Nothing when it failed; error() then says why.
    std::optional<QJsonValue> send(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    // What went wrong last; empty when nothing did.
    QString error() const { return trouble; }

private:
    void awaitPort();

    QTemporaryDir files;
    QProcess program;
    int port = 0;
    QString trouble;
};

} // namespace korvel::sim
