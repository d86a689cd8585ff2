#pragma once

#include <memory>
#include <string>

class QMenu;

namespace korvel::native {

/// The NSMenu that mirrors `menu`; valid as long as `menu`.
void *menuHandle(QMenu &menu);

/// A main menu with an empty application menu and an Edit menu. An accessory application never shows it, but it
/// delivers key equivalents to text fields.
class HiddenMainMenu {
public:
    HiddenMainMenu(const std::string &applicationTitle, const std::string &editTitle);
    ~HiddenMainMenu();

    void addSeparator();
    /// `selector` is sent to the first responder. `key` is combined with Command, and with Shift if it is upper case.
    void add(const std::string &title, const std::string &selector, const std::string &key);
    /// Sets it as the application's main menu. The application retains it.
    void install();

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
