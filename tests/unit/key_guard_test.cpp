#include "ui/key_guard.h"

#include <gtest/gtest.h>

namespace korvel::test {
namespace {

constexpr quint32 SPACE = 65, RETURN = 36, SHIFT = 50;

struct KeyGuardTest : ::testing::Test {
    KeyCodes down; ///< On the keyboard.
    bool tells = true;
    KeyGuard guard{[this] { return tells ? down : KeyCodes(); }};
    const Instant start = Instant(1h);

    void comesByItself() {
        guard.close(start);
        guard.entered();
    }
    /// Presses and releases a key that would answer.
    bool tap(milliseconds at, quint32 code = RETURN) {
        const bool taken = hold(at, code);
        letGo(code);
        return taken;
    }
    bool hold(milliseconds at, quint32 code, bool repeats = false) {
        down.insert(code);
        return guard.press({.code = code, .repeats = repeats, .answers = true}, start + at);
    }
    void letGo(quint32 code) {
        down.remove(code);
        guard.release(code);
    }
};

TEST_F(KeyGuardTest, AWindowThatComesByItselfTakesNoKeyInItsFirstSecond) {
    comesByItself();
    EXPECT_FALSE(tap(0ms));
    EXPECT_FALSE(tap(290ms));
    EXPECT_FALSE(guard.takes({.code = RETURN}, start + 999ms));
    EXPECT_TRUE(tap(1000ms));
    EXPECT_TRUE(tap(1001ms));
    guard.close(start); // again, later
    EXPECT_FALSE(tap(999ms));
}

TEST_F(KeyGuardTest, WhoGoesOnTypingAnswersNothingUntilHePauses) {
    comesByItself();
    for (milliseconds at = 200ms; at < 10s; at += 400ms)
        ASSERT_FALSE(tap(at, at.count() % 3 ? SPACE : RETURN)) << at.count();
    EXPECT_TRUE(tap(11s));
}

TEST_F(KeyGuardTest, EveryKeyThatWasDownHasToBeReleasedFirst) {
    for (const bool systemTells : {true, false}) {
        tells = systemTells;
        down = {SPACE};
        comesByItself();
        if (systemTells) {
            EXPECT_FALSE(tap(2s, RETURN)); // another one than the one that is held
        }
        for (milliseconds at = 500ms; at < 3s; at += 40ms)
            ASSERT_FALSE(hold(at, SPACE, at > 500ms)) << at.count();
        letGo(SPACE);
        EXPECT_TRUE(tap(4s, SPACE));
    }
}

TEST_F(KeyGuardTest, AKeyThatIsHeldAnswersNoWindowButWritesAndMoves) {
    down = {RETURN}; // it chose the window's entry in another program's menu
    guard.entered();
    EXPECT_FALSE(hold(100ms, RETURN)); // reported as if it went down now
    EXPECT_FALSE(hold(140ms, RETURN, true));
    EXPECT_TRUE(guard.press({.code = RETURN, .repeats = true}, start));
    EXPECT_TRUE(hold(150ms, SHIFT));
    letGo(RETURN);
    EXPECT_TRUE(tap(200ms));
    EXPECT_FALSE(hold(300ms, RETURN, true));
}

TEST_F(KeyGuardTest, AReleaseInAnotherWindowIsNoticed) {
    down = {SHIFT};
    comesByItself();
    down.clear(); // nobody reports it
    EXPECT_TRUE(tap(1200ms));
}

} // namespace
} // namespace korvel::test
