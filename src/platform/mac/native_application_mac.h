#pragma once

#include <functional>
#include <memory>

namespace korvel::native {

/// Removes the Dock icon and the menu bar (NSApplication's accessory policy).
void becomeAccessory();

/// Brings this application's windows to the front. macOS may refuse.
void activateApplication();

/// Hides this application's windows, except notices, and passes the focus to the next application.
void hideApplication();

/// Reports that the user opened the application again (the Apple event "reopen application"). Replaces NSApplication's
/// handler, which would show a window. Create it before the application object.
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
