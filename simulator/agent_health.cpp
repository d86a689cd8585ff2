#include "simulator/agent_health.h"

#include "simulator/encryption_json.h"
#include "simulator/files.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

QString agentVersion() { return u"korvel-agent/1.4.2"_s; }

QJsonObject healthReport(const AgentSituation &situation, const QJsonObject &scenario) {
    const bool signedIn = !situation.config.value("agentToken"_L1).toString().isEmpty();
    const bool offline = scenario.value("offline"_L1).toBool();
    const bool dead = signedIn && situation.signInIsDead;
    const bool online =
        signedIn && !dead && !offline && situation.uptimeMs >= milliseconds(scenario, "connectMs"_L1, 300);

    const QJsonObject report{
        {u"ok"_s, true},
        {u"online"_s, online},
        {u"ver"_s, agentVersion()},
        {u"sessions"_s, 0},
        {u"account"_s, situation.config.value("username"_L1).toString()},
        {u"authDead"_s, dead},
        {u"accountGone"_s, false},
        {u"e2ee"_s, encryptionReport(situation.encryption, online)},
        {u"perms"_s, situation.permissions},
    };
    return mergePatch(report, scenario.value("health"_L1).toObject());
}

} // namespace korvel::sim
