#pragma once

#include <QList>

namespace korvel::test {

/// The runs of korvel-exchange that a process has started (Linux: proc(5)). Other facts about them are hidden.
QList<qint64> exchangesOf(qint64 parent);

/// Whether a process has not ended.
bool isRunning(qint64 pid);

} // namespace korvel::test
