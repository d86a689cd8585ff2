#include "service/launchctl.h"

#include "ports/system_tools.h"

#include <chrono>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {
constexpr auto LAUNCHCTL_TIMEOUT = std::chrono::seconds(30);
}

ServiceResult Launchctl::launchctl(const QStringList &arguments) {
    const ProgramResult result =
        programs.run({.executable = LAUNCHCTL, .arguments = arguments, .timeout = LAUNCHCTL_TIMEOUT});
    if (result.status < 0)
        return ServiceResult::Unknown;
    return result.status == 0 ? ServiceResult::Succeeded : ServiceResult::Failed;
}

ServiceResult Launchctl::print(const QString &label) { return launchctl({u"print"_s, target(label)}); }
ServiceResult Launchctl::bootstrap(const QString &jobFile) { return launchctl({u"bootstrap"_s, domain, jobFile}); }
ServiceResult Launchctl::bootout(const QString &label) { return launchctl({u"bootout"_s, target(label)}); }
ServiceResult Launchctl::enable(const QString &label) { return launchctl({u"enable"_s, target(label)}); }
ServiceResult Launchctl::disable(const QString &label) { return launchctl({u"disable"_s, target(label)}); }
ServiceResult Launchctl::kickstart(const QString &label) { return launchctl({u"kickstart"_s, u"-k"_s, target(label)}); }

} // namespace korvel
