#pragma once

#include "app/model/wording.h"
#include "simulator/home/scenario.h"

#include <QJsonObject>
#include <QString>

namespace korvel::sim {

/// The agent's configuration file, agent.json, which it shares with the tray. Every change reads the file, changes its
/// own keys and replaces the whole.
class AgentConfig {
public:
    explicit AgentConfig(QString file) : path(std::move(file)) {}
    /// The file in KORVEL_HOME, or in ~/.korvel.
    static AgentConfig ofThisProcess();

    /// Its content; empty when it is missing or holds no JSON object.
    QJsonObject read() const;
    QString text(QLatin1StringView key) const { return read().value(key).toString(); }
    /// Applies an RFC 7396 merge patch. False, and nothing changes, when the file holds something else than an object:
    /// what a user stored is not thrown away.
    bool change(const QJsonObject &patch) const;
    /// The local token, made and stored when there is none yet.
    QString ensureLocalToken() const;

private:
    QString path;
};

/// Settles the language of the agent's texts: the scenario's, else that of KORVEL_LANG.
inline void speakAgentLanguage(const Scenario &scenario) {
    const QJsonValue entry = scenario.section(QLatin1StringView("e2ee")).value(QLatin1StringView("lang"));
    ZH = entry.toString(qEnvironmentVariable("KORVEL_LANG")).startsWith(QLatin1StringView("zh"));
}

} // namespace korvel::sim
