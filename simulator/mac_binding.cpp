#include "simulator/mac_binding.h"

#include "simulator/account_server_program.h"
#include "simulator/launch_job.h"

#include <QFile>
#include <QSysInfo>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

void loadAgentJob(const HomePaths &paths) {
    LaunchJob job(paths, agentLabel());
    if (job.isLoaded() || !QFile::exists(paths.jobFile()))
        return;
    job.setDisabled(false);
    job.load(paths.jobFile());
}

} // namespace

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
    const bool written = config.change({{u"agentToken"_s, granted.token},
                                        {u"agentId"_s, granted.agentId},
                                        {u"username"_s, account},
                                        {u"loginName"_s, account},
                                        {u"server"_s, AccountServerProcess(paths).address()},
                                        {u"host"_s, granted.host}});
    loadAgentJob(paths);
    return written;
}

} // namespace korvel::sim
