#pragma once

#include "base/alive.h"
#include "base/done.h"
#include "base/scheduler.h"
#include "ports/programs.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
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

    /// The agent program in the tray's own bundle; none if it is missing or not executable.
    std::optional<QString> bundledAgent() const;
    /// The agent program for command-line calls: the bundled one, else the override; none without either.
    std::optional<AgentLocation> agentForCLI() const;
    /// Runs the agent's sign-in command with `request` as its input. Calls `done` on the main thread.
    void runAgentJson(const QJsonObject &request, Done<QJsonObject> done, milliseconds timeout = 60s);

private:
    Programs &programs;
    Scheduler &scheduler;
    const QString bundlePath;
    const std::optional<QString> agentBin;
    Alive alive;
};

/// Builds the program run of the sign-in command with `request` as its input.
ProgramRun buildAgentJson(const AgentLocation &agent, const QJsonObject &request, milliseconds timeout);

/// Parses the agent's output: the last line that starts with "{"; an error if that is not a JSON object.
Result<QJsonObject> parseAgentJson(const QByteArray &output);

} // namespace korvel
