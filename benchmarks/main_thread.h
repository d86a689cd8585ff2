#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <utility>

namespace korvel::bench {

/// The name on the session bus under which a process has its item in the panel; empty while it has none.
QString itemService(qint64 pid);

/// Asks the item in the panel of a tray for its name, over and over, from its making on: the main thread answers.
class MainThread {
public:
    MainThread(qint64 p, QString s) : pid(p), service(std::move(s)) { ask(); }

    /// The longest time, in milliseconds, that the main thread was busy before it came to such a call.
    double longestBlock() const { return static_cast<double>(longest) / 1e6; }

private:
    void ask();

    const qint64 pid;
    const QString service;
    qint64 longest = 0; ///< Nanoseconds on a processor: what others do on this machine does not count.
    std::unique_ptr<QObject> call = std::make_unique<QObject>();
};

} // namespace korvel::bench
