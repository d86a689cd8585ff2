#pragma once

#include <QString>
#include <functional>

namespace korvel {

/// Writes one line to standard error and to the sink set by setLogSink(). Never pass a secret. Control characters
/// become spaces, so text from outside cannot forge a line. Thread-safe.
void log(const QString &line);

/// Adds a second destination for log lines (the system log). Call once, before threads start.
void setLogSink(std::function<void(const QString &)> sink);

} // namespace korvel
