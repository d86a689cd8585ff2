#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace korvel {

/// A command-line switch that does one job and ends the process.
enum class AutomationMode { Login, E2eeRender, AgentJson, MenuDump, LoginRender };

/// The automation mode requested by `args` (program path first); none: a normal start. `permission` is the value of
/// KORVEL_TRAY_AUTOMATION and must be "1".
std::optional<AutomationMode> automationMode(const QStringList &args, const std::optional<QString> &permission);

} // namespace korvel
