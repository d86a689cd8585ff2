#include "simulator/browser/web_browser.h"

#include <QFile>
#include <QJsonArray>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int FIND_WITHIN_MS = 10'000;
constexpr int LOAD_WITHIN_MS = 30'000;

QJsonObject capabilities(const QString &folder) {
    QStringList arguments{u"--headless=new"_s,
                          u"--user-data-dir=%1/profile"_s.arg(folder),
                          u"--window-size=900,700"_s,
                          u"--lang=en-US"_s,
                          u"--accept-lang=en-US"_s,
                          u"--no-first-run"_s,
                          u"--no-default-browser-check"_s,
                          u"--no-proxy-server"_s,
                          u"--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1"_s,
                          u"--disable-background-networking"_s,
                          u"--disable-component-update"_s,
                          u"--disable-sync"_s,
                          u"--disable-gpu"_s,
                          u"--disable-quic"_s,
                          u"--disable-dev-shm-usage"_s,
                          u"--disable-breakpad"_s};
    if (::geteuid() == 0)
        arguments.append(u"--no-sandbox"_s); // the sandbox is not to be had as root
    const QJsonObject wanted{
        {u"browserName"_s, u"chrome"_s},
        {u"acceptInsecureCerts"_s, true},
        {u"timeouts"_s, QJsonObject{{u"implicit"_s, FIND_WITHIN_MS}, {u"pageLoad"_s, LOAD_WITHIN_MS}}},
        {u"goog:chromeOptions"_s, QJsonObject{{u"args"_s, QJsonArray::fromStringList(arguments)}}},
    };
    return {{u"capabilities"_s, QJsonObject{{u"alwaysMatch"_s, wanted}}}};
}

} // namespace

WebBrowser::WebBrowser() {
    if (!driver.isRunning())
        return;
    const auto value = driver.send("POST", u"/session"_s, capabilities(driver.folder()));
    const QString id = value ? value->toObject().value("sessionId"_L1).toString() : QString();
    if (!id.isEmpty())
        session = u"/session/"_s + id;
}

WebBrowser::~WebBrowser() {
    if (!session.isEmpty())
        driver.send("DELETE", session);
}

std::optional<QJsonValue> WebBrowser::post(const QString &path, const QJsonObject &body) {
    return session.isEmpty() || path.isEmpty() ? std::nullopt : driver.send("POST", session + path, body);
}

QString WebBrowser::element(const QString &selector) {
    const auto found = post(u"/element"_s, {{u"using"_s, u"css selector"_s}, {u"value"_s, selector}});
    const QJsonObject reference = found ? found->toObject() : QJsonObject(); // one pair: a fixed key, the element's id
    return reference.isEmpty() ? QString() : u"/element/"_s + reference.begin().value().toString();
}

bool WebBrowser::open(const QString &url) { return post(u"/url"_s, {{u"url"_s, url}}).has_value(); }

bool WebBrowser::fill(const QString &selector, const QString &text) {
    const QString field = element(selector);
    return !field.isEmpty() && post(field + u"/clear"_s) && post(field + u"/value"_s, {{u"text"_s, text}});
}

bool WebBrowser::click(const QString &selector) {
    const QString target = element(selector);
    return !target.isEmpty() && post(target + u"/click"_s);
}

std::optional<QString> WebBrowser::text(const QString &selector) {
    const QString shown = element(selector);
    const auto value = shown.isEmpty() ? std::nullopt : driver.send("GET", session + shown + u"/text"_s);
    return value ? std::optional(value->toString()) : std::nullopt;
}

bool WebBrowser::screenshot(const QString &file) {
    const auto image = session.isEmpty() ? std::nullopt : driver.send("GET", session + u"/screenshot"_s);
    QFile output(file);
    return image && output.open(QIODevice::WriteOnly) &&
           output.write(QByteArray::fromBase64(image->toString().toLatin1())) > 0;
}

} // namespace korvel::sim
