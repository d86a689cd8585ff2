#pragma once

#include "app/model/paths.h"
#include "ports/desktop.h"
#include "ports/programs.h"
#include "ports/running_instances.h"
#include "ports/status_item.h"

#include <functional>
#include <memory>

namespace korvel {

/// What differs between the systems that the tray runs on; one implementation each, chosen by CMake.

/// Sends the log to the system's own as well, where it has one. Before any thread starts.
void logToSystem();

/// Sets up what the toolkit reads before there is an application object. Returns Qt's own arguments for it; static
/// text.
QList<const char *> prepareToolkit();

/// What the application object, just made, is on this system.
void settleApplication();

/// Calls `reopened` whenever the user opens the application again while it runs, as long as what it gives lives. Asked
/// for before there is an application object.
std::shared_ptr<void> listenForReopen(std::function<void()> reopened);

std::unique_ptr<RunningInstances> makeRunningInstances(const Paths &paths);
std::unique_ptr<StatusItem> makeStatusItem();
std::unique_ptr<Desktop> makeDesktop(Programs &programs, bool hasStandIns);

} // namespace korvel
