#include "simulator/mac_binding.h"

#include "simulator/account_server_program.h"

#include <QSysInfo>

namespace korvel::sim {

using namespace Qt::StringLiterals;

QString macName() { return QSysInfo::machineHostName().remove(u".local"_s).left(32); }

bool bindMac(const HomePaths &paths, const AgentConfig &config, const QString &account) {
    const QString held = config.read().value("agentToken"_L1).toString();
    Credential granted;
    const bool recorded = AccountStore(paths).change([&](AccountBook &book, qint64) {
        if (credentialOf(book, held))
            release(book, held);
        granted = grant(book, account, macName());
        return true;
    });
    if (!recorded)
        return false;
    return config.change({{u"agentToken"_s, granted.token},
                          {u"agentId"_s, granted.agentId},
                          {u"username"_s, account},
                          {u"loginName"_s, account},
                          {u"server"_s, AccountServerProcess(paths).address()},
                          {u"host"_s, granted.host}});
}

} // namespace korvel::sim
