#pragma once

#include "base/alive.h"
#include "base/done.h"
#include "base/scheduler.h"
#include "ports/programs.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace korvel {

/// How to start the agent program.
struct AgentLocation {
    QString executable;
    QStringList leadingArguments;
    bool operator==(const AgentLocation &) const = default;
};

/// Runs the agent's one-shot JSON command.
class AgentCommand {
public:
    /// `bundlePath` is the tray's own bundle, `agentBin` the developer's override from KORVEL_AGENT_BIN.
    AgentCommand(Programs &programs, Scheduler &scheduler, QString bundlePath, std::optional<QString> agentBin)
        : programs(programs), scheduler(scheduler), bundlePath(std::move(bundlePath)), agentBin(std::move(agentBin)) {}

    /// The agent program inside the tray's own bundle, when it is executable there.
    std::optional<QString> bundledAgent() const;
    /// The agent program for command-line calls: the bundled one, else the override.
    std::optional<AgentLocation> agentForCLI() const;
    /// Hands `request` to the agent's sign-in command; `done` gets its reply, or nothing, on the main thread.
    void runAgentJson(const QJsonObject &request, Done<QJsonObject> done, milliseconds timeout = 60s);

private:
    Programs &programs;
    Scheduler &scheduler;
    const QString bundlePath;
    const std::optional<QString> agentBin;
    Alive alive;
};

/// The program run that carries `request`.
ProgramRun buildAgentJson(const AgentLocation &agent, const QJsonObject &request, milliseconds timeout);

/// The reply in what the agent printed: the last line that begins with "{", when it is a JSON object.
Result<QJsonObject> parseAgentJson(const QByteArray &output);

} // namespace korvel
