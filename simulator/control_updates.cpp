#include "simulator/control_updates.h"

#include <cstdio>

namespace korvel::sim {

using namespace Qt::StringLiterals;

const char UPDATE_HELP[] = R"(
Updates of the tray, as the account server offers them:

  update                     print the manifest
  update publish VERSION     offer that version
  update withdraw            offer nothing new
)";

namespace {

int update(Home &home, const QStringList &arguments) {
    ServerUpdates updates = home.updates();
    const QString act = arguments.value(0);
    if (act == "publish"_L1 && arguments.size() == 2)
        return statusOf(updates.publish(arguments[1]));
    if (act == "withdraw"_L1 && arguments.size() == 1)
        return statusOf(updates.withdraw());
    if (!arguments.isEmpty())
        return USAGE;
    std::puts(updates.offer().manifest.trimmed().constData());
    return 0;
}

constexpr CommandEntry COMMANDS[] = {{"update"_L1, 0, 2, update}};

} // namespace

std::span<const CommandEntry> updateCommands() { return COMMANDS; }

} // namespace korvel::sim
