#include "simulator/control_account.h"

#include <QFile>
#include <QJsonDocument>

#include <cstdio>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

const char ACCOUNT_HELP[] = R"(
The account server and its accounts:

  account-server start|stop  start it, print its address; or end it
  server-requests            print the requests that it received, one a line
  account add NAME [PHONE]   add an account; its password is one line on standard input
  account credentials        print the good credentials of Macs: agent id, account, name of the Mac
  account release AGENTID    end one
  account code PHONE         print the last code sent to a phone
  browser-sign-in approve NAME | cancel | fail TEXT | expire
                             what becomes of the newest sign-in in the browser
)";

namespace {

int accountServer(Home &home, const QStringList &arguments) {
    if (arguments[0] == "stop"_L1)
        return statusOf(home.stopAccountServer());
    if (arguments[0] != "start"_L1)
        return USAGE;
    const bool runs = home.startAccountServer();
    if (runs)
        std::puts(qUtf8Printable(home.accountServer()));
    return statusOf(runs);
}

int serverRequests(Home &home, const QStringList &) {
    for (const QJsonObject &request : home.serverRequests())
        std::puts(QJsonDocument(request).toJson(QJsonDocument::Compact).constData());
    return 0;
}

int addAccount(Home &home, const QStringList &arguments) {
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly))
        return 1;
    const QString password = QString::fromUtf8(input.readLine()).remove(u'\n');
    return statusOf(home.accounts().add(arguments[1], arguments.value(2), password));
}

int account(Home &home, const QStringList &arguments) {
    const QString &act = arguments[0];
    if (act == "add"_L1 && arguments.size() >= 2)
        return addAccount(home, arguments);
    if (act == "credentials"_L1 && arguments.size() == 1) {
        for (const Credential &each : home.accounts().liveCredentials())
            std::puts(qUtf8Printable(each.agentId + u' ' + each.account + u' ' + each.host));
        return 0;
    }
    if (act == "release"_L1 && arguments.size() == 2)
        return statusOf(home.accounts().release(arguments[1]));
    if (act != "code"_L1 || arguments.size() != 2)
        return USAGE;
    const QString code = home.accounts().lastCode(arguments[1]);
    if (!code.isEmpty())
        std::puts(qUtf8Printable(code));
    return statusOf(!code.isEmpty());
}

int browserSignIn(Home &home, const QStringList &arguments) {
    const QString &end = arguments[0];
    ServerAccounts accounts = home.accounts();
    if (arguments.size() == 2 && end == "approve"_L1)
        return statusOf(accounts.approveBrowser(arguments[1]));
    if (arguments.size() == 2 && end == "fail"_L1)
        return statusOf(accounts.failBrowser(arguments[1]));
    if (arguments.size() == 1 && end == "cancel"_L1)
        return statusOf(accounts.cancelBrowser());
    return arguments.size() == 1 && end == "expire"_L1 ? statusOf(accounts.expireBrowser()) : USAGE;
}

constexpr CommandEntry COMMANDS[] = {
    {"account-server"_L1, 1, 1, accountServer},
    {"server-requests"_L1, 0, 0, serverRequests},
    {"account"_L1, 1, 3, account},
    {"browser-sign-in"_L1, 1, 2, browserSignIn},
};

} // namespace

std::span<const CommandEntry> accountCommands() { return COMMANDS; }

} // namespace korvel::sim
