#pragma once

#include <QObject>
#include <functional>

namespace korvel::bench {

/// The session bus's StatusNotifierWatcher, as a panel has it, that only takes notice of items that register.
class ItemWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    /// Called when an item registers.
    std::function<void()> registered;

    /// Takes the name on the session bus; false when another one has it.
    bool start();
    bool hasHost() const { return true; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &item);
};

} // namespace korvel::bench
