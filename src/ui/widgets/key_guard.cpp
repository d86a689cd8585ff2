#include "ui/widgets/key_guard.h"

#include <algorithm>

namespace korvel {

namespace {
constexpr milliseconds READING_DELAY = 1s;
constexpr milliseconds END_OF_TYPING = 700ms; // longer than a typist's pause between two keys
} // namespace

void KeyGuard::close(Instant now) {
    untouched = true;
    closedUntil = now + READING_DELAY;
}

bool KeyGuard::takes(const KeyPress &key, Instant now) const {
    return !isClosed(now) && !(key.answers && (key.repeats || held.contains(key.code)));
}

bool KeyGuard::press(const KeyPress &key, Instant now) {
    if (!held.isEmpty()) {
        // Key releases in other windows are not reported here.
        const bool wasHeld = held.contains(key.code);
        held &= keysDown();
        if (wasHeld)
            held.insert(key.code);
    }
    if (isClosed(now)) {
        held.insert(key.code);
        closedUntil = std::max(closedUntil, now + END_OF_TYPING);
        return false;
    }
    untouched = false;
    return takes(key, now);
}

} // namespace korvel
