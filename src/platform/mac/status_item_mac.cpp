#include "platform/mac/status_item_mac.h"

#include "platform/mac/native_menu_mac.h"
#include "ui/widgets/icons.h"

#include <utility>

namespace korvel {

namespace {
native::TemplatePicture templatePicture(bool on) {
    return {templatePng(on, 1).toStdString(), templatePng(on, 2).toStdString(), TEMPLATE_POINTS, "Korvel"};
}
} // namespace

StatusItemMac::StatusItemMac() : iconOn(templatePicture(true)), iconOff(templatePicture(false)) {}
StatusItemMac::~StatusItemMac() = default;

void StatusItemMac::show(Events events) {
    menu = std::make_unique<MenuWidget>(MenuHost::Program, std::move(events.chosen));
    QObject::connect(&menu->menu(), &QMenu::aboutToShow, &menu->menu(), std::move(events.menuOpening));
    item = std::make_unique<native::StatusBarItem>();
    item->setMenu(native::menuHandle(menu->menu()));
}

void StatusItemMac::apply(const IconView &view) {
    const std::optional<IconView> before = std::exchange(icon, view);
    if (!before || before->on != view.on)
        item->setPicture(view.on ? iconOn : iconOff);
    if (!before || before->dimmed != view.dimmed)
        item->setDimmed(view.dimmed);
    if (!before || before->toolTip != view.toolTip)
        item->setToolTip(view.toolTip.toStdString());
}

void StatusItemMac::apply(const MenuView &view) {
    menu->apply(view);
    item->updateMenu();
    // Qt passes titles and states to a native menu, but not tool tips.
    const auto count = static_cast<std::size_t>(view.entries.size());
    if (item->menuLength() != count)
        return;
    for (std::size_t i = 0; i < count; ++i)
        item->setMenuToolTip(i, view.entries.at(static_cast<qsizetype>(i)).toolTip.toStdString());
}

} // namespace korvel
