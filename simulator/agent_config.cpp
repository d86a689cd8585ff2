#include "simulator/agent_config.h"

#include "simulator/files.h"
#include "simulator/home_paths.h"
#include "simulator/random_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <sys/stat.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

AgentConfig AgentConfig::ofThisProcess() {
    const QString folder = qEnvironmentVariable("KORVEL_HOME");
    return AgentConfig(folder.isEmpty() ? HomePaths::ofThisProcess().home + "/.korvel"_L1 : folder);
}

QString AgentConfig::path() const { return folder + "/agent.json"_L1; }

QJsonObject AgentConfig::read() const { return readObject(path()).value_or(QJsonObject{}); }

bool AgentConfig::change(const QJsonObject &patch) const {
    const auto content = readObject(path());
    if (!content && QFileInfo::exists(path()))
        return false;
    QDir().mkpath(QFileInfo(folder).path());
    ::mkdir(QFile::encodeName(folder).constData(), 0700); // it holds credentials
    const QJsonObject changed = mergePatch(content.value_or(QJsonObject{}), patch);
    return replaceFile(path(), QJsonDocument(changed).toJson(), 0600);
}

QString AgentConfig::ensureLocalToken() const {
    QString stored = read().value("localToken"_L1).toString();
    if (!stored.isEmpty())
        return stored;
    QString made = randomHex(32);
    change({{u"localToken"_s, made}});
    return made;
}

bool AgentConfig::signIn(const QString &account) const {
    return change({{u"agentToken"_s, u"simulated-token-"_s + randomHex(8)},
                   {u"agentId"_s, u"simulated-agent-"_s + randomHex(4)},
                   {u"username"_s, account},
                   {u"loginName"_s, account}});
}

bool AgentConfig::signOut() const {
    QJsonObject patch;
    for (const QLatin1StringView key : {"agentToken"_L1, "agentId"_L1, "username"_L1, "loginName"_L1})
        patch.insert(key, QJsonValue::Null);
    return change(patch);
}

} // namespace korvel::sim
