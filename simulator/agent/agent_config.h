#pragma once

#include "app/model/wording.h"
#include "simulator/home/scenario.h"

#include <QJsonObject>
#include <QString>

namespace korvel::sim {

/// The agent's configuration file, agent.json, which it shares with the tray. A change reads the file, changes its own
/// keys and replaces the whole file.
class AgentConfig {
public:
    explicit AgentConfig(QString file) : path(std::move(file)) {}
    /// The file in KORVEL_HOME, or in ~/.korvel.
    static AgentConfig ofThisProcess();

    /// The file's object; empty if it is missing or holds no JSON object.
    QJsonObject read() const;
    QString text(QLatin1StringView key) const { return read().value(key).toString(); }
    /// Applies a merge patch (RFC 7396). Returns false and keeps the file if it holds anything but an object, so that
    /// no user data is lost.
    bool change(const QJsonObject &patch) const;
    /// The local token. Creates and stores one if there is none.
    QString ensureLocalToken() const;

private:
    QString path;
};

/// Sets the language of the agent's texts: the scenario's, else that of KORVEL_LANG.
inline void speakAgentLanguage(const Scenario &scenario) {
    const QJsonValue entry = scenario.section(QLatin1StringView("e2ee")).value(QLatin1StringView("lang"));
    ZH = entry.toString(qEnvironmentVariable("KORVEL_LANG")).startsWith(QLatin1StringView("zh"));
}

} // namespace korvel::sim
