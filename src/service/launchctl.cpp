#include "service/launchctl.h"

#include "platform/system_tools.h"

using namespace Qt::StringLiterals;

namespace korvel {

bool Launchctl::launchctl(const QStringList &arguments) {
    return programs.run({.executable = LAUNCHCTL, .arguments = arguments}).status == 0;
}

bool Launchctl::print(const QString &label) { return launchctl({u"print"_s, target(label)}); }
bool Launchctl::bootstrap(const QString &jobFile) { return launchctl({u"bootstrap"_s, domain, jobFile}); }
bool Launchctl::bootout(const QString &label) { return launchctl({u"bootout"_s, target(label)}); }
bool Launchctl::enable(const QString &label) { return launchctl({u"enable"_s, target(label)}); }
bool Launchctl::disable(const QString &label) { return launchctl({u"disable"_s, target(label)}); }
bool Launchctl::kickstart(const QString &label) { return launchctl({u"kickstart"_s, u"-k"_s, target(label)}); }

} // namespace korvel
