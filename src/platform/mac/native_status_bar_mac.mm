#include "platform/mac/native_status_bar_mac.h"

#include "platform/mac/native_text_mac.h"

#import <AppKit/AppKit.h>

namespace korvel::native {

namespace {

NSImageRep *representation(const std::string &png, NSSize size) {
    NSImageRep *picture = [NSBitmapImageRep imageRepWithData:[NSData dataWithBytes:png.data() length:png.size()]];
    picture.size = size;
    return picture;
}

} // namespace

struct TemplatePicture::Native {
    NSImage *image;
};

TemplatePicture::TemplatePicture(const std::string &png, const std::string &doublePng, double points,
                                 const std::string &description) {
    const NSSize size = NSMakeSize(points, points);
    NSImage *image = [[NSImage alloc] initWithSize:size];
    [image addRepresentation:representation(png, size)];
    [image addRepresentation:representation(doublePng, size)];
    [image setTemplate:YES];
    image.accessibilityDescription = systemText(description);
    native = std::make_shared<const Native>(Native{image});
}

struct StatusBarItem::Native {
    NSStatusItem *item;
};

StatusBarItem::StatusBarItem()
    : native(std::make_unique<Native>(
          Native{[[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength]})) {}

StatusBarItem::~StatusBarItem() { [[NSStatusBar systemStatusBar] removeStatusItem:native->item]; }

void StatusBarItem::setMenu(void *nsMenu) { native->item.menu = (__bridge NSMenu *)nsMenu; }

void StatusBarItem::updateMenu() { [native->item.menu update]; }

std::size_t StatusBarItem::menuLength() const { return static_cast<std::size_t>(native->item.menu.numberOfItems); }

void StatusBarItem::setMenuToolTip(std::size_t at, const std::string &text) {
    [native->item.menu itemAtIndex:static_cast<NSInteger>(at)].toolTip = systemText(text);
}

void StatusBarItem::setPicture(const TemplatePicture &picture) { native->item.button.image = picture.native->image; }

void StatusBarItem::setDimmed(bool dimmed) { native->item.button.appearsDisabled = dimmed; }

void StatusBarItem::setToolTip(const std::string &text) { native->item.button.toolTip = systemText(text); }

} // namespace korvel::native
