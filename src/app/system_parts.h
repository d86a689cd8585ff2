#pragma once

#include "app/model/paths.h"
#include "ports/desktop.h"
#include "ports/programs.h"
#include "ports/running_instances.h"
#include "ports/status_item.h"

#include <QStringList>
#include <functional>
#include <memory>

namespace korvel {

/// Platform-specific parts: one implementation per system, chosen by CMake.

/// Also sends log lines to the system log, if there is one. Call before any thread starts.
void logToSystem();

/// The user's preferred languages in order, such as "zh-Hans-CN"; empty if the system has no list.
QStringList preferredLanguages();

/// Prepares settings that Qt reads before the application object exists. Returns Qt's own command-line arguments, as
/// static strings.
QList<const char *> prepareToolkit();

/// Configures the new application object for this system.
void configureApplication();

/// Calls `reopened` whenever the user opens the application again, until the returned object is destroyed. Call before
/// the application object exists.
std::shared_ptr<void> listenForReopen(std::function<void()> reopened);

std::unique_ptr<RunningInstances> makeRunningInstances(const Paths &paths);
std::unique_ptr<StatusItem> makeStatusItem();
std::unique_ptr<Desktop> makeDesktop(Programs &programs, bool hasSimulatedTools);

} // namespace korvel
