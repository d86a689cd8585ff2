#include "account/account_notices.h"
#include "app/timed_notices.h"
#include "e2ee/e2ee_views.h"
#include "permissions/permission_views.h"
#include "service/service_notices.h"
#include "service/sync_toggle.h"
#include "status/health_poll.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"
#include "ui/views/notice_view.h"
#include "ui/widgets/key_guard.h"
#include "ui/widgets/notice_window.h"
#include "ui/widgets/windows.h"
#include "update/update_notices.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QTest>

namespace korvel::test {
namespace {

constexpr quint32 SPACE = 65, RETURN = 36, SHIFT = 50;

struct KeyGuardTest : ::testing::Test {
    KeyCodes down;           ///< On the keyboard.
    bool reportsKeys = true; ///< Whether the system knows them.
    KeyGuard guard{[this] { return reportsKeys ? down : KeyCodes(); }};
    const Instant start = Instant(1h);

    void openedByProgram() {
        guard.close(start);
        guard.entered();
    }
    bool hold(milliseconds at, quint32 code, bool repeats = false) {
        down.insert(code);
        return guard.press({.code = code, .repeats = repeats, .answers = true}, start + at);
    }
    void letGo(quint32 code) {
        down.remove(code);
        guard.release(code);
    }
    bool tap(milliseconds at, quint32 code = RETURN) {
        const bool taken = hold(at, code);
        letGo(code);
        return taken;
    }
};

TEST_F(KeyGuardTest, AWindowOfTheProgramTakesNoKeyInItsFirstSecondNorWhileTheUserTypesOn) {
    openedByProgram();
    EXPECT_FALSE(tap(290ms));
    EXPECT_FALSE(guard.takes({.code = RETURN}, start + 999ms));
    EXPECT_TRUE(tap(1000ms));
    EXPECT_TRUE(tap(1001ms));
    openedByProgram();
    for (milliseconds at = 200ms; at < 10s; at += 400ms)
        ASSERT_FALSE(tap(at, at.count() % 3 ? SPACE : RETURN)) << at.count();
    EXPECT_TRUE(tap(11s));
}

TEST_F(KeyGuardTest, EveryKeyThatIsDownHasToBeReleasedFirst) {
    for (const bool reports : {true, false}) {
        reportsKeys = reports;
        down = {SPACE};
        openedByProgram();
        EXPECT_FALSE(reports && tap(2s, RETURN)); // another key than the held one
        for (milliseconds at = 500ms; at < 3s; at += 40ms)
            ASSERT_FALSE(hold(at, SPACE, at > 500ms)) << at.count();
        letGo(SPACE);
        EXPECT_TRUE(tap(4s, SPACE));
    }
    reportsKeys = true;
    down = {SHIFT};
    openedByProgram();
    down.clear(); // released in another window
    EXPECT_TRUE(tap(1200ms));
}

TEST_F(KeyGuardTest, AHeldKeyAnswersNoWindowButWritesAndMoves) {
    down = {RETURN}; // it chose the window's entry in another program's menu
    guard.entered();
    EXPECT_FALSE(hold(100ms, RETURN)); // reported as pressed now
    EXPECT_FALSE(hold(140ms, RETURN, true));
    EXPECT_TRUE(guard.press({.code = RETURN, .repeats = true}, start));
    EXPECT_TRUE(hold(150ms, SHIFT));
    letGo(RETURN);
    EXPECT_TRUE(tap(200ms));
    EXPECT_FALSE(hold(300ms, RETURN, true));
}

TEST(TimedNotices, EachNoticeHasItsOwnTimeBoundedTextAndLink) {
    FakeNotices panel;
    FakeDesktop desktop;
    ManualScheduler scheduler;
    TimedNotices notices(panel, desktop, scheduler);
    notices.showHUD({.text = u"first"_s, .secs = Seconds(2)});
    scheduler.advance(1500ms);
    notices.showHUD({.text = u"x\n"_s.repeated(100000), .secs = Seconds(2)});
    EXPECT_LE(panel.last().size(), 1000);
    EXPECT_FALSE(panel.last().contains(u'\n'));
    scheduler.advance(1900ms);
    EXPECT_TRUE(panel.visible);
    scheduler.advance(200ms);
    EXPECT_FALSE(panel.visible);
    for (const QString &link : {QString(), u"https://x.example"_s}) {
        notices.showHUD({.text = u"text"_s, .secs = Seconds(9), .error = true, .link = link});
        panel.click();
        EXPECT_FALSE(panel.visible);
        EXPECT_EQ(desktop.opened.value(0), link);
    }
}

TEST(NoticeLayout, IsCentredBelowTheMenuBarAndNeverWiderThanItsLimit) {
    const QRect visible(100, 30, 1000, 700);
    const NoticeLayout small = noticeLayout({200, 16}, visible);
    EXPECT_EQ(small.panel, QRect(483, 40, 234, 36));
    EXPECT_EQ(small.label, QRect(17, 10, 200, 16));
    EXPECT_EQ(noticeLayout({900, 64}, visible).panel.width(), 594);
    EXPECT_LE(noticeLayout({560, 32767}, visible).panel.bottom(), visible.bottom());
}

TEST(NoticeWindow, IsOnTheScreenOfTheActiveWindowElseOfThePointerAndReportsAClick) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    NoticeWindow notices;
    int clicks = 0;
    QWidget *window = nullptr;
    const auto screen = [&] {
        notices.show({.text = u"here"_s}, [&] { ++clicks; });
        for (QWidget *shown : QApplication::topLevelWidgets())
            if (shown->isVisible() && shown->windowTitle() == u"here")
                window = shown;
        return QGuiApplication::screenAt(window->geometry().center());
    };
    const QPoint before = QCursor::pos();
    for (QScreen *ofPointer : screens) {
        QCursor::setPos(ofPointer->geometry().center());
        EXPECT_EQ(screen(), ofPointer);
    }
    QTest::mouseClick(window, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    QWidget active;
    active.setGeometry(100, 100, 200, 200);
    active.show();
    active.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&active));
    EXPECT_EQ(screen(), screens.first());
    QCursor::setPos(before);
}

TEST(NamedNotices, LastAsLongAsTheirTextNeedsAndShowErrorsAsSuch) {
    using Lost = HealthEffects::Notice;
    const auto toggled = [](ToggleDirection to, ServiceResult look) { return toggleNotice(to, look, false, {}); };
    const QJsonObject mismatch{{u"code"_s, u"mismatch"_s}};
    const auto expect = [](double secs, bool error, const QList<Notice> &notices) {
        for (const Notice &notice : notices) {
            EXPECT_EQ(notice.secs, Seconds(secs)) << notice.text.toStdString();
            EXPECT_EQ(notice.error, error) << notice.text.toStdString();
        }
    };
    expect(2.4, false,
           {toggled(ToggleDirection::Pause, ServiceResult::Failed),
            toggled(ToggleDirection::Resume, ServiceResult::Succeeded)});
    expect(2.5, false, {signedOutNotice(), noLogNotice(), repairedNotice(), upToDateNotice({})});
    expect(3, false,
           {signedInNotice({}), encryptedNotice(), quittingNotice(), permissionVerdictNotice({.permsOk = true}),
            installedNotice({})});
    expect(4, false,
           {allowedNotice({}), speechDownloadNotice(), permissionsRequestedNotice(), availableNotice({}),
            downloadingNotice({}), installCancelledNotice({})});
    expect(4, true,
           {agentNotUpNotice(), noSignInPageNotice(), signOutFailedNotice(), noSpeechDownloadNotice(Error{}),
            notCheckedNotice(), notVerifiedNotice(), toggled(ToggleDirection::Pause, ServiceResult::Unknown)});
    expect(5, true, {signInFailedNotice({})});
    expect(6, false, {promptsComingNotice(), installerOpenedNotice()});
    expect(6, true,
           {deniedNotice({}), notAdmittedNotice(Error{}), strangersResetNotice(), notRejoinedNotice(Error{}),
            permissionsNotRequestedNotice(), downloadFailedNotice(), downloadRefusedNotice(404, {}, {}),
            notSavedNotice(), modifiedNotice(), swappedNotice(), lostSignInNotice(Lost::SignedOut)});
    expect(8, true, {unsignedNotice({}, {}), repairFailedNotice({})});
    expect(10, true,
           {notAdmittedNotice(mismatch), permissionVerdictNotice({.permsOk = false}),
            toggled(ToggleDirection::Resume, ServiceResult::Failed)});
    expect(15, false, {agentAwaitedNotice()});
    expect(30, false, {signingOutNotice(), installingNotice({})});
    expect(40, false, {signingInNotice()});
    expect(50, false, {verifyingNotice()});
}

} // namespace
} // namespace korvel::test
