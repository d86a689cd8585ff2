#pragma once

#include <functional>
#include <memory>

namespace korvel::native {

/// No Dock icon and no menu bar of its own (NSApplication's accessory policy).
void becomeAccessory();

/// Brings this application's windows in front of those of the others. macOS may refuse.
void activateApplication();

/// Hides this application's windows, but for notices, and gives the keyboard to the next application.
void hideApplication();

/// Hears that the user opened the application again while it runs (the Apple event "reopen application"). It takes over
/// from NSApplication, whose own answer would be to show a window. Made before the application object.
class ReopenListener {
public:
    explicit ReopenListener(std::function<void()> reopened);
    ~ReopenListener();
    ReopenListener(const ReopenListener &) = delete;
    ReopenListener &operator=(const ReopenListener &) = delete;

private:
    struct Native;
    const std::unique_ptr<Native> native;
};

} // namespace korvel::native
