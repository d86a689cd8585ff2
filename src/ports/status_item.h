#pragma once

#include <functional>

namespace korvel {

struct IconView;
struct MenuEntry;
struct MenuView;

/// The item in the menu bar and its menu. apply() is called only with changed views.
class StatusItem {
public:
    struct Events {
        std::function<void()> menuOpening;
        std::function<void(const MenuEntry &)> chosen;
    };
    virtual ~StatusItem() = default;
    /// Adds the item to the menu bar as soon as there is one.
    virtual void show(Events events) = 0;
    virtual void apply(const IconView &view) = 0;
    virtual void apply(const MenuView &view) = 0;
};

} // namespace korvel
