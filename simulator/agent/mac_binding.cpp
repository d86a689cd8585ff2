#include "simulator/agent/mac_binding.h"

#include "simulator/agent/agent_config.h"
#include "simulator/server/account_server_program.h"
#include "simulator/server/accounts.h"

#include <QSysInfo>

namespace korvel::sim {

using namespace Qt::StringLiterals;

QString macName() { return QSysInfo::machineHostName().remove(u".local"_s).left(32); }

void bindMac(const HomePaths &paths, const QString &account) {
    const AgentConfig config = AgentConfig::ofThisProcess();
    Accounts accounts(paths);
    accounts.release(config.text("agentToken"_L1));
    const Credential granted = accounts.grant(account, macName());
    config.change({{u"agentToken"_s, granted.token},
                   {u"agentId"_s, granted.agentId},
                   {u"username"_s, account},
                   {u"loginName"_s, account},
                   {u"server"_s, AccountServerProcess(paths).address()},
                   {u"host"_s, granted.host}});
}

} // namespace korvel::sim
