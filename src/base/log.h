#pragma once

#include <QString>
#include <functional>

namespace korvel {

/// Writes one line to the tray's log: standard error, and what setLogSink added. Never given a secret.
/// Control characters become blanks, so that a text from outside cannot fake a line. May be called on any thread.
void log(const QString &line);

/// Adds a second destination for log lines (the system log). Set once, before threads start.
void setLogSink(std::function<void(const QString &)> sink);

} // namespace korvel
