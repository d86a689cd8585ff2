#pragma once

#include "base/scheduler.h"

#include <QSet>
#include <functional>

namespace korvel {

/// Physical keys by scan code.
using KeyCodes = QSet<quint32>;

/// The keys that are down, as QKeyEvent::nativeScanCode(). Empty where the system marks key repetition reliably, so
/// that this is not needed.
KeyCodes keysDown();

/// A key press.
struct KeyPress {
    quint32 code = 0;     ///< Scan code.
    bool repeats = false; ///< Auto-repeat of a held key.
    bool answers = false; ///< Closes the window or presses the focused control.
};

/// Decides which keys a window accepts, so that no user answers an alert unread. A window that opens automatically
/// rejects keys in its first second, while the user keeps typing, and until all held keys are released. In any window,
/// a held key does not answer.
class KeyGuard {
public:
    /// `keysDown` returns the keys that are currently down; empty if the system does not report them.
    explicit KeyGuard(std::function<KeyCodes()> keysDown) : keysDown(std::move(keysDown)) {}

    /// The window opens automatically.
    void close(Instant now);
    /// The user opens the window.
    void open() {
        untouched = false;
        held.clear();
    }
    /// The window received the focus.
    void entered() { held = keysDown(); }
    /// Whether the window accepts this key press.
    bool takes(const KeyPress &key, Instant now) const;
    /// As takes(), and records the key press.
    bool press(const KeyPress &key, Instant now);
    void release(quint32 code) { held.remove(code); }

private:
    bool isClosed(Instant now) const { return untouched && (now < closedUntil || !held.isEmpty()); }

    std::function<KeyCodes()> keysDown;
    Instant closedUntil = DISTANT_PAST;
    bool untouched = false; ///< Opened automatically and has accepted no key yet.
    KeyCodes held;          ///< Keys that were down before the window accepted keys.
};

} // namespace korvel
