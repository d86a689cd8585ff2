#pragma once

#include <QObject>
#include <functional>

namespace korvel::bench {

/// A minimal StatusNotifierWatcher on the session bus that only reports the registration of items.
class ItemWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    /// Called when an item registers.
    std::function<void()> registered;

    /// Takes the name on the session bus; false if it is taken.
    bool start();
    bool hasHost() const { return true; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &item);
};

} // namespace korvel::bench
