#pragma once

#include "platform/mac/native_status_bar_mac.h"
#include "ports/status_item.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/menu_widget.h"

#include <memory>
#include <optional>

namespace korvel {

/// The item in the menu bar of a Mac.
class StatusItemMac final : public StatusItem {
public:
    StatusItemMac();
    ~StatusItemMac() override;

    void show(Events events) override;
    void apply(const IconView &view) override;
    void apply(const MenuView &view) override;

private:
    const native::TemplatePicture iconOn;
    const native::TemplatePicture iconOff;
    std::optional<IconView> icon;
    std::unique_ptr<MenuWidget> menu;
    std::unique_ptr<native::StatusBarItem> item; ///< Destroyed before the menu that it shows.
};

} // namespace korvel
