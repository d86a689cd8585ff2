#pragma once

#include "ports/status_item.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/menu_widget.h"

#include <QSystemTrayIcon>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace korvel {

/// The item as a StatusNotifierItem on the session bus.
///
/// Qt decides once, when it first asks, whether there is a tray; so the icon is made only when a host is there.
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
    // A panel shows the exported menu, a left click the program's own: the two write their titles differently.
    std::unique_ptr<MenuWidget> exported;
    std::unique_ptr<MenuWidget> popup;
    std::unique_ptr<QSystemTrayIcon> tray; ///< None until there are a tray host and an icon.
};

} // namespace korvel
