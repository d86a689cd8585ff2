#include "platform/mac/native_menu_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>
#include <QMenu>

namespace korvel::native {

namespace {

NSMenu *addSubmenu(NSMenu *mainMenu, NSString *title) {
    NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:title action:nullptr keyEquivalent:@""];
    NSMenu *submenu = [[NSMenu alloc] initWithTitle:title];
    item.submenu = submenu;
    [mainMenu addItem:item];
    return submenu;
}

} // namespace

void *menuHandle(QMenu &menu) { return (__bridge void *)menu.toNSMenu(); }

struct HiddenMainMenu::Native {
    NSMenu *mainMenu;
    NSMenu *editMenu;
};

HiddenMainMenu::HiddenMainMenu(const std::string &applicationTitle, const std::string &editTitle)
    : native(std::make_unique<Native>()) {
    native->mainMenu = [[NSMenu alloc] initWithTitle:@""];
    addSubmenu(native->mainMenu, systemText(applicationTitle));
    native->editMenu = addSubmenu(native->mainMenu, systemText(editTitle));
}

HiddenMainMenu::~HiddenMainMenu() = default;

void HiddenMainMenu::addSeparator() { [native->editMenu addItem:[NSMenuItem separatorItem]]; }

void HiddenMainMenu::add(const std::string &title, const std::string &selector, const std::string &key) {
    [native->editMenu addItemWithTitle:systemText(title)
                                action:NSSelectorFromString(systemText(selector))
                         keyEquivalent:systemText(key)];
}

void HiddenMainMenu::install() { [NSApp setMainMenu:native->mainMenu]; }

} // namespace korvel::native
