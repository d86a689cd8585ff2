#pragma once

#include "home_fixture.h"

#include <QJsonDocument>
#include <QUrl>

namespace korvel::sim {

// A home whose agent runs and where nobody is signed in.
class BrowserSignInTest : public HomeTest {
protected:
    BrowserSignInTest() {
        home.signOut();
        home.setScenario({{QStringLiteral("connectMs"), 0}});
        EXPECT_TRUE(startAgent());
    }
    QJsonObject start() { return parsed(post(home.port(), "/auth/start", token(), R"({"device":"Sam's <Mini>"})")); }
    QJsonObject statusOf(const QJsonObject &started) {
        const QString id = started.value(QLatin1StringView("id")).toString();
        return parsed(get(home.port(), "/auth/status?id=" + QUrl::toPercentEncoding(id), token()));
    }
    QString statusNameOf(const QJsonObject &started) {
        return statusOf(started).value(QLatin1StringView("status")).toString();
    }
    static QJsonObject parsed(const Exchange &exchange) { return QJsonDocument::fromJson(exchange.body).object(); }
};

} // namespace korvel::sim
