#pragma once

#include <memory>
#include <string>

namespace korvel::native {

/// A main menu of two submenus, the application's, which is empty, and one for editing. An accessory application never
/// shows it, but key equivalents reach text fields through it.
class HiddenMainMenu {
public:
    HiddenMainMenu(const std::string &applicationTitle, const std::string &editTitle);
    ~HiddenMainMenu();

    void addSeparator();
    /// `selector` goes to the first responder; `key` is pressed with Command, an upper-case one also with Shift.
    void add(const std::string &title, const std::string &selector, const std::string &key);
    /// Makes it the application's main menu, which keeps it.
    void install();

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
