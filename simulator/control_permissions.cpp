#include "simulator/control_permissions.h"

#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

const char PERMISSION_HELP[] = R"(
The agent's permissions, by their English names; status 1 means that there is no such permission or state:

  permission                 print each with its state
  permission missing         print the names of those that are missing
  permission grant NAME      turn one on in System Settings, or allow it when the system asks for it
  permission revoke NAME     turn one off, or refuse it
  permission set NAME STATE  granted, denied, undetermined, notrunning, or one that begins with "unknown"
)";

namespace {

void print(const QString &line) { std::puts(qUtf8Printable(line)); }

int permission(Home &home, const QStringList &arguments) {
    PermissionControl permissions = home.permissions();
    const QString act = arguments.value(0);
    if (arguments.isEmpty())
        for (const QString &name : permissions.names())
            print(name + u": "_s + permissions.state(name));
    else if (act == "missing"_L1 && arguments.size() == 1)
        for (const QString &name : permissions.missing())
            print(name);
    else if (act == "grant"_L1 && arguments.size() == 2)
        return statusOf(permissions.grant(arguments[1]));
    else if (act == "revoke"_L1 && arguments.size() == 2)
        return statusOf(permissions.revoke(arguments[1]));
    else if (act == "set"_L1 && arguments.size() == 3)
        return statusOf(permissions.setState(arguments[1], arguments[2]));
    else
        return USAGE;
    return 0;
}

constexpr CommandEntry COMMANDS[] = {{"permission"_L1, 0, 3, permission}};

} // namespace

std::span<const CommandEntry> permissionCommands() { return COMMANDS; }

} // namespace korvel::sim
