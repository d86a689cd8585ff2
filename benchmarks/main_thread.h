#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <utility>

namespace korvel::bench {

/// The bus name of a process's panel item; empty while it has none.
QString itemService(qint64 pid);

/// Requests the name of a tray's panel item over D-Bus, repeatedly from construction on. The tray's main thread
/// responds.
class MainThread {
public:
    MainThread(qint64 p, QString s) : pid(p), service(std::move(s)) { ping(); }

    /// The longest time, in milliseconds, that the main thread was busy before it handled such a call.
    double longestBlock() const { return static_cast<double>(longest) / 1e6; }

private:
    void ping();

    const qint64 pid;
    const QString service;
    qint64 longest = 0; ///< Nanoseconds of CPU time, so that the load of other processes does not count.
    std::unique_ptr<QObject> call = std::make_unique<QObject>();
};

} // namespace korvel::bench
