#pragma once

#include <QDBusVirtualObject>
#include <functional>

namespace korvel::bench {

/// The session bus's StatusNotifierWatcher, as a panel has it, that only takes notice of items that register.
class ItemWatcher final : public QDBusVirtualObject {
public:
    /// Called when an item registers.
    std::function<void()> registered;

    /// Takes the name on the session bus; false when another one has it.
    bool start();

protected:
    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
};

} // namespace korvel::bench
