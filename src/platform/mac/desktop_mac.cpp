#include "platform/mac/desktop_mac.h"

#include "platform/mac/native_menu_mac.h"
#include "platform/mac/native_session_mac.h"
#include "ui/views/edit_menu.h"

namespace korvel {

namespace {
constexpr unsigned long long OPTION = 1ULL << 19; // NSEventModifierFlagOption
}

bool DesktopMac::optionKeyHeld() const { return (native::heldModifiers() & OPTION) != 0; }

QString DesktopMac::computerName() const {
    const QString name = QString::fromStdString(native::computerName());
    return name.isEmpty() ? DesktopQt::computerName() : name;
}

void DesktopMac::installEditMenu(const QList<EditMenuItem> &items) {
    native::HiddenMainMenu menu("Korvel", editMenuTitle().toStdString());
    for (const EditMenuItem &item : items)
        if (item.title.isEmpty())
            menu.addSeparator();
        else
            menu.add(item.title.toStdString(), item.selector.toStdString(), item.key.toStdString());
    menu.install();
}

} // namespace korvel
