#pragma once

#include "ports/status_item.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/menu_widget.h"

#include <QSystemTrayIcon>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace korvel {

/// The item as a StatusNotifierItem on the session bus. Qt checks for a tray only once, at first use, so the icon is
/// created only after a host has appeared.
class StatusItemLinux final : public StatusItem {
public:
    StatusItemLinux();
    ~StatusItemLinux() override;

    void show(Events events) override;
    void apply(const IconView &view) override;
    void apply(const MenuView &view) override;

private:
    void putIntoPanel();
    void openPopup();

    Events events;
    bool hasHost = false;
    std::optional<IconView> icon;
    std::unique_ptr<QDBusServiceWatcher> watcher;
    // The panel shows the exported menu, a left click opens the program's own. They escape titles differently.
    std::unique_ptr<MenuWidget> exported;
    std::unique_ptr<MenuWidget> popup;
    std::unique_ptr<QSystemTrayIcon> tray; ///< Null until there are a tray host and an icon.
};

} // namespace korvel
