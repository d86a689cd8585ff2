#pragma once

#include <QJsonObject>
#include <QString>

namespace korvel::sim {

// The agent's configuration file, agent.json, which it shares with the tray. Every change reads the file, changes its
// own keys and replaces the whole.
class AgentConfig {
public:
    // The file in a configuration folder.
    explicit AgentConfig(QString folder) : folder(std::move(folder)) {}
    // The file in KORVEL_HOME, or in ~/.korvel.
    static AgentConfig ofThisProcess();

    QString path() const;
    // Its content; empty when it is missing or holds no JSON object.
    QJsonObject read() const;
    // Applies an RFC 7396 merge patch. A file that exists but holds no JSON object is left as it is, and the result is
    // false: what a user stored is not thrown away.
    bool change(const QJsonObject &patch) const;

    // The local token, made and stored when there is none yet. When it cannot be stored it is still returned.
    QString ensureLocalToken() const;
    // Stores a sign-in of `account` that the account server does not know.
    bool signIn(const QString &account) const;
    // Removes what signIn() stored.
    bool signOut() const;

private:
    QString folder;
};

} // namespace korvel::sim
