#include "ui/notices.h"

#include "support/fakes.h"
#include "support/manual_scheduler.h"
#include "ui/esc_window.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct NoticesTest : ::testing::Test {
    RecordedNotices panel;
    ScriptedDesktop desktop;
    ManualScheduler scheduler;
    Notices notices{panel, desktop, scheduler};
};

TEST_F(NoticesTest, TheTimerOfAReplacedNoticeLeavesTheNewOneAlone) {
    notices.showHUD({.text = u"first"_s, .secs = Seconds(2)});
    scheduler.advance(1500ms);
    notices.showHUD({.text = u"second"_s, .secs = Seconds(2)});
    scheduler.advance(1900ms);
    EXPECT_TRUE(panel.visible);
    scheduler.advance(200ms);
    EXPECT_FALSE(panel.visible);
}

TEST_F(NoticesTest, ATextFromOutsideFillsNoScreen) {
    notices.showHUD({.text = QString(u"x\n"_s).repeated(100000), .secs = Seconds(2)});
    EXPECT_LE(panel.last().size(), 1000);
    EXPECT_FALSE(panel.last().contains(u'\n'));
}

TEST_F(NoticesTest, AClickOpensTheLinkIfThereIsOneAndCloses) {
    notices.showHUD({.text = u"plain"_s, .secs = Seconds(9)});
    panel.click();
    EXPECT_FALSE(panel.visible);
    EXPECT_TRUE(desktop.opened.isEmpty());
    notices.showHUD({.text = u"linked"_s, .secs = Seconds(9), .error = true, .link = u"https://x.example"_s});
    panel.click();
    EXPECT_EQ(desktop.opened, QStringList{u"https://x.example"_s});
    EXPECT_FALSE(panel.visible);
}

TEST(NoticeLayout, IsCentredBelowTheMenuBarAndNeverWiderThanItsLimit) {
    const QRect visible(100, 30, 1000, 700);
    const NoticeLayout small = noticeLayout({200, 16}, visible);
    EXPECT_EQ(small.panel, QRect(483, 40, 234, 36));
    EXPECT_EQ(small.label, QRect(17, 10, 200, 16));
    EXPECT_EQ(noticeLayout({900, 64}, visible).panel.width(), 594);
    EXPECT_LE(noticeLayout({560, 32767}, visible).panel.bottom(), visible.bottom());
}

TEST(EscWindow, OnlyEscapeWithoutAModifierRunsItsAction) {
    EscWindow window;
    int escaped = 0;
    window.onEsc = [&] { ++escaped; };
    QTest::keyClick(&window, Qt::Key_Escape, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_A);
    EXPECT_EQ(escaped, 0);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(escaped, 1);
}

} // namespace
} // namespace korvel::test
