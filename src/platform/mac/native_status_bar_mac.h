#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace korvel::native {

/// A picture that the menu bar draws in its own colour (NSImage, template).
class TemplatePicture {
public:
    /// The same picture as PNG at one and at two pixels a point; `points` is its side length.
    TemplatePicture(const std::string &png, const std::string &doublePng, double points,
                    const std::string &description);

private:
    friend class StatusBarItem;
    struct Native;
    std::shared_ptr<const Native> native;
};

/// A square item in the menu bar (NSStatusItem); gone with this object.
class StatusBarItem {
public:
    StatusBarItem();
    ~StatusBarItem();
    StatusBarItem(const StatusBarItem &) = delete;
    StatusBarItem &operator=(const StatusBarItem &) = delete;

    /// `nsMenu` is an NSMenu that lives on elsewhere.
    void setMenu(void *nsMenu);
    /// Makes an open menu show its entries as they are: those inserted while it opens may look enabled.
    void updateMenu();
    /// How many entries the menu has at this moment.
    std::size_t menuLength() const;
    /// `at` is less than menuLength().
    void setMenuToolTip(std::size_t at, const std::string &text);
    void setPicture(const TemplatePicture &picture);
    void setDimmed(bool dimmed);
    void setToolTip(const std::string &text);

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
