#include "ui/notices.h"

#include "account/account_notices.h"
#include "e2ee/e2ee_notices.h"
#include "permissions/permission_notices.h"
#include "service/service_notices.h"
#include "service/sync_toggle.h"
#include "status/health_poll.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"
#include "ui/esc_window.h"
#include "ui/notice_view.h"
#include "ui/notice_window.h"
#include "update/update_notices.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QTest>

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

QWidget *shownWindow(const QString &title) {
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowTitle() == title)
            return window;
    return nullptr;
}

TEST(NoticeWindow, AClickReachesWhoeverShowedTheNotice) {
    NoticeWindow notice;
    int clicks = 0;
    notice.show({.text = u"Signed out"_s}, [&] { ++clicks; });
    QTest::mouseClick(shownWindow(u"Signed out"_s), Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
}

TEST(NoticeWindow, IsOnTheScreenOfTheWindowInFrontElseOfThePointer) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    NoticeWindow notices;
    const auto place = [&] {
        notices.show({.text = u"here"_s}, {});
        return shownWindow(u"here"_s)->geometry();
    };
    const QPoint before = QCursor::pos();
    for (const QScreen *screen : screens) {
        QCursor::setPos(screen->geometry().center());
        EXPECT_TRUE(screen->geometry().contains(place()));
    }
    QWidget front;
    front.setGeometry(100, 100, 200, 200);
    front.show();
    front.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));
    EXPECT_TRUE(screens.first()->geometry().contains(place()));
    QCursor::setPos(before);
}

TEST(NamedNotices, LastAsLongAsTheirTextNeedsAndShowErrorsAsSuch) {
    using Lost = HealthEffects::Notice;
    const auto toggled = [](ToggleDirection to, ServiceResult look) { return toggleNotice(to, look, false, {}); };
    const QJsonObject mismatch{{u"code"_s, u"mismatch"_s}};
    const struct {
        double secs;
        bool error;
        QList<Notice> notices;
    } cases[] = {
        {2.4,
         false,
         {toggled(ToggleDirection::Pause, ServiceResult::Failed),
          toggled(ToggleDirection::Resume, ServiceResult::Succeeded)}},
        {2.5, false, {signedOutNotice(), noLogNotice(), repairedNotice(), upToDateNotice({})}},
        {3,
         false,
         {signedInNotice({}), encryptedNotice(), quittingNotice(), permissionVerdictNotice({.permsOk = true}),
          installedNotice({})}},
        {4,
         false,
         {allowedNotice({}), speechDownloadNotice(), permissionsRequestedNotice(), availableNotice({}),
          downloadingNotice({}), installCancelledNotice({})}},
        {4,
         true,
         {agentNotUpNotice(), noSignInPageNotice(), signOutFailedNotice(), noSpeechDownloadNotice({}),
          notCheckedNotice(), notVerifiedNotice(), toggled(ToggleDirection::Pause, ServiceResult::Unknown)}},
        {5, true, {signInFailedNotice({})}},
        {6, false, {promptsComingNotice(), installerOpenedNotice()}},
        {6,
         true,
         {deniedNotice({}), notAdmittedNotice({}), strangersResetNotice(), notRejoinedNotice({}),
          permissionsNotRequestedNotice(), downloadFailedNotice(), downloadRefusedNotice(404, {}, {}), notSavedNotice(),
          modifiedNotice(), swappedNotice(), lostSignInNotice(Lost::SignedOut)}},
        {8, true, {unsignedNotice({}, {}), repairFailedNotice({})}},
        {10,
         true,
         {notAdmittedNotice(mismatch), permissionVerdictNotice({.permsOk = false}),
          toggled(ToggleDirection::Resume, ServiceResult::Failed)}},
        {15, false, {agentAwaitedNotice()}},
        {30, false, {signingOutNotice(), installingNotice({})}},
        {40, false, {signingInNotice()}},
        {50, false, {verifyingNotice()}},
    };
    for (const auto &c : cases)
        for (const Notice &notice : c.notices) {
            EXPECT_EQ(notice.secs, Seconds(c.secs)) << notice.text.toStdString();
            EXPECT_EQ(notice.error, c.error) << notice.text.toStdString();
        }
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
