#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace korvel::native {

/// An image that the menu bar draws in its own colour (template NSImage).
class TemplatePicture {
public:
    /// `png` has one pixel per point, `doublePng` has two; `points` is the side length.
    TemplatePicture(const std::string &png, const std::string &doublePng, double points,
                    const std::string &description);

private:
    friend class StatusBarItem;
    struct Native;
    std::shared_ptr<const Native> native;
};

/// A square item in the menu bar (NSStatusItem), removed with this object.
class StatusBarItem {
public:
    StatusBarItem();
    ~StatusBarItem();
    StatusBarItem(const StatusBarItem &) = delete;
    StatusBarItem &operator=(const StatusBarItem &) = delete;

    /// `nsMenu` is an NSMenu owned elsewhere.
    void setMenu(void *nsMenu);
    /// Redraws an open menu: entries inserted while it opens may look enabled.
    void updateMenu();
    /// Current number of menu entries.
    std::size_t menuLength() const;
    /// `at` must be less than menuLength().
    void setMenuToolTip(std::size_t at, const std::string &text);
    void setPicture(const TemplatePicture &picture);
    void setDimmed(bool dimmed);
    void setToolTip(const std::string &text);

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
