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
    QString title; // without mnemonic marks
    bool enabled = true;
    bool separator = false;
    bool visible = true;
};

// The properties of a status item.
struct PanelItem {
    QString toolTipTitle;
    QString menuPath;
    QList<QImage> icons; // one per size, smallest first
};

// A status item as a panel sees it: found at the watcher, read and used over D-Bus (StatusNotifierItem and
// com.canonical.dbusmenu). Draws nothing. Needs a thread with an event loop; the item may be in this process. Each
// operation waits at most two seconds for the item and runs the event loop meanwhile.
class PanelProbe {
public:
    // Connects to the session bus in the environment.
    PanelProbe();
    ~PanelProbe();
    PanelProbe(const PanelProbe &) = delete;
    PanelProbe &operator=(const PanelProbe &) = delete;

    // Waits for a registered item, of process `pid` unless that is 0, and attaches to it. False if none appears.
    bool waitForItem(std::chrono::milliseconds within, qint64 pid = 0);
    // Whether the attached item is still registered at the watcher.
    bool isRegistered();

    // The item's properties; none if it does not respond.
    std::optional<PanelItem> item();
    // The menu from top to bottom, with invisible entries; empty if the item does not respond.
    QList<PanelMenuEntry> menu();
    // The title of the menu's first entry; empty without one.
    QString statusLine();
    // Opens the menu as a panel does. False if the item does not respond.
    bool open();
    // Chooses the visible, enabled entry of that title. False if there is none or the item does not respond.
    bool click(const QString &title);

    // Number of signals of the item and its menu since it was attached, or since clearSignals().
    int signalCount() const;
    void clearSignals();
    // Sets the callback for each turn of the event loop in which signals arrived.
    void onChange(std::function<void()> call);

    // Runs the event loop until `condition` holds, checking every 20 ms. False on timeout.
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
