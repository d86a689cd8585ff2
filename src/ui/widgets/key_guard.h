#pragma once

#include "base/scheduler.h"

#include <QSet>
#include <functional>

namespace korvel {

/// Physical keys, by the number that the system has for each.
using KeyCodes = QSet<quint32>;

/// A key that goes down, as the guard sees it.
struct KeyPress {
    quint32 code = 0;     ///< Of the physical key.
    bool repeats = false; ///< It was down already; the system repeats it.
    bool answers = false; ///< Closes the window or presses what has the focus.
};

/// Decides which keys a window takes, so that nobody answers what he has not seen. A window that came up by itself
/// takes none in its first second, while somebody goes on typing, and until every key that was down has been released.
/// In any window a key that is held answers nothing.
class KeyGuard {
public:
    /// `keysDown` gives the keys that are down now; none where the system does not tell.
    explicit KeyGuard(std::function<KeyCodes()> keysDown) : keysDown(std::move(keysDown)) {}

    /// The window comes up by itself.
    void close(Instant now);
    /// The user opens the window.
    void open() {
        untouched = false;
        held.clear();
    }
    /// The window got the keyboard.
    void entered() { held = keysDown(); }
    /// Whether the window would take a key that goes down.
    bool takes(const KeyPress &key, Instant now) const;
    /// The same, of one that does go down.
    bool press(const KeyPress &key, Instant now);
    void release(quint32 code) { held.remove(code); }

private:
    bool isClosed(Instant now) const { return untouched && (now < closedUntil || !held.isEmpty()); }

    std::function<KeyCodes()> keysDown;
    Instant closedUntil = DISTANT_PAST;
    bool untouched = false; ///< It came up by itself and took no key yet.
    KeyCodes held;          ///< Were down before the window took keys.
};

} // namespace korvel
