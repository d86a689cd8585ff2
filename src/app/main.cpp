#include "app/automation_runs.h"
#include "app/launch_environment.h"
#include "app/model/automation.h"
#include "app/model/deployment.h"
#include "app/model/paths.h"
#include "app/model/wording.h"
#include "app/platform_app.h"
#include "app/system_parts.h"
#include "base/unix_process.h"

#include <csignal>
#include <unistd.h>

using namespace korvel;

namespace {

QStringList argumentList(int argc, char **argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

} // namespace

int main(int argc, char **argv) {
    openStandardStreams();
    logToSystem();
    // Writing to a program that exits early must not kill the tray.
    std::signal(SIGPIPE, SIG_IGN);
    const LaunchEnvironment environment = readLaunchEnvironment();
    const FixedConfig config = makeFixedConfig(builtDeployment(), environment);
    ZH = config.ZH;
    ACCEPT_LANGUAGE = config.ACCEPT_LANGUAGE;
    const Paths paths = makePaths(config, environment.home, ::getuid());
    if (const auto mode = automationMode(argumentList(argc, argv), environment.automation))
        return runAutomation(*mode, argc, argv, config, paths);
    return runTray(argv, config, paths);
}
