#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace korvel::sim {

// One entry of an exported menu as a panel shows it.
struct PanelMenuEntry {
    int id = 0;
    QString title; // with the marks of mnemonics taken out
    bool enabled = true;
    bool separator = false;
    bool visible = true;
};

// What a status item says about itself.
struct PanelItem {
    QString toolTipTitle;
    QString menuPath;
    QList<QImage> icons; // one for each size offered, smallest first
};

// A status item seen as a panel sees it: found at the watcher, read and used over D-Bus (StatusNotifierItem and
// com.canonical.dbusmenu). It shows and draws nothing. Needs an event loop's thread; the item may live in this process.
// Each operation waits for the item at most two seconds, running the event loop meanwhile.
class PanelProbe {
public:
    // Connects to the session bus that the environment names.
    PanelProbe();
    ~PanelProbe();
    PanelProbe(const PanelProbe &) = delete;
    PanelProbe &operator=(const PanelProbe &) = delete;

    // Waits until an item is registered, of process `pid` unless that is 0, and attaches to it. False when none came.
    bool waitForItem(std::chrono::milliseconds within, qint64 pid = 0);
    // Whether the item attached to is still registered at the watcher.
    bool isRegistered();

    // The item's properties; nothing when it does not answer.
    std::optional<PanelItem> item();
    // The menu from top to bottom, entries that are not visible included; empty when it does not answer.
    QList<PanelMenuEntry> menu();
    // The title of the menu's first entry; empty without one.
    QString statusLine();
    // Does what a panel does when its user opens the menu. False when the item does not answer.
    bool open();
    // Chooses the visible, enabled entry of that title. False when there is none or it does not answer.
    bool click(const QString &title);

    // Signals of the item and its menu since it was attached to, or since clearSignals().
    int signalCount() const;
    void clearSignals();
    // Called once per turn of the event loop in which signals came.
    void onChange(std::function<void()> call);

    // Runs the event loop until `condition` holds, looking every 20 ms. False when it did not come to hold in time.
    bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds within);

private:
    class Receiver;
    bool attach(const QString &registered, qint64 pid);
    QStringList registeredItems();
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QList<QVariant> &arguments) const;

    QDBusConnection bus;
    QString itemService;
    QString itemPath;
    QString menuPath;
    std::unique_ptr<Receiver> receiver;
};

} // namespace korvel::sim
