#include "account/account_notices.h"
#include "app/timed_notices.h"
#include "base/plain_text.h"
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
#include "ui/widgets/text_styles.h"
#include "ui/widgets/windows.h"
#include "update/update_notices.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QTest>

namespace korvel::test {
namespace {

TEST(ToneColour, EveryToneCanBeReadOnLightAndDarkWindows) {
    EXPECT_NEAR(contrastRatio(Qt::black, QColor(0x77, 0x77, 0x77)), 4.69, 0.01); // a published value
    for (const auto &[text, ground, field] :
         {std::tuple{QColor(Qt::black), QColor(0xef, 0xef, 0xef), QColor(Qt::white)},
          {Qt::black, Qt::white, Qt::white},
          {Qt::white, QColor(0x32, 0x32, 0x32), QColor(0x1e, 0x1e, 0x1e)},
          {QColor(0xee, 0xee, 0xec), QColor(0x35, 0x35, 0x35), QColor(0x2d, 0x2d, 0x2d)},
          {QColor(0xfc, 0xfc, 0xfc), QColor(0x2a, 0x2e, 0x32), QColor(0x1b, 0x1e, 0x20)}}) {
        const QPalette palette(text, ground, ground.lighter(150), ground.darker(180), ground.darker(130), text,
                               Qt::white, field, ground);
        for (const Tone tone : {Tone::Normal, Tone::Secondary, Tone::Tertiary, Tone::Link, Tone::Error})
            EXPECT_GE(contrastRatio(toneColour(tone, palette), ground), 4.5) << static_cast<int>(tone);
        const QPalette colours = readableColours(palette);
        EXPECT_GE(contrastRatio(colours.color(QPalette::Disabled, QPalette::ButtonText), ground), 4.5);
        const double placeholder = contrastRatio(colours.color(QPalette::Active, QPalette::PlaceholderText), field);
        EXPECT_GE(placeholder, 4.5);
        EXPECT_LE(placeholder, contrastRatio(text, field) / 2);
    }
    QPalette system;
    system.setColor(QPalette::Link, QColor(0x00, 0x57, 0xae));
    EXPECT_EQ(toneColour(Tone::Link, system), QColor(0x00, 0x57, 0xae));
    system.setColor(QPalette::Link, Qt::blue); // Qt's own default
    EXPECT_NE(toneColour(Tone::Link, system), QColor(Qt::blue));
}

TEST(LongText, ANameIsOneLineOfSixtyFourCharactersAtMost) {
    const QString family = u"👨‍👩‍👧‍👦"_s, wave = u"👋🏽"_s;
    const std::pair<QString, QString> cases[] = {
        {u"Anna’s phone"_s, u"Anna’s phone"_s},
        {u" a\r\n\tb\u2028c\u3000\u2800d "_s, u"a b c d"_s},
        {u"\u200b\u202e\u2066\ufeff\u00ad"_s, u""_s},
        {u"a\u200b\u202eb"_s, u"ab"_s},
        {u"می‌خواهم"_s, u"می‌خواهم"_s}, // needs its zero-width non-joiner
        {QString(64, u'W'), QString(64, u'W')},
        {QString(65, u'W'), QString(63, u'W') + u'…'},
        {u"é"_s.normalized(QString::NormalizationForm_D).repeated(64),
         u"é"_s.normalized(QString::NormalizationForm_D).repeated(64)},
        {u"e"_s + u"\u0301\u0301\u0301\u200b"_s.repeated(99), u"e\u0301\u0301\u0301\u0301"_s},
        {family + wave, family + wave},
        {QString(61, u'W') + u"ਊ😀abc"_s, QString(61, u'W') + u"ਊ😀…"_s}, // Qt splits this emoji
        {QString(100000, u'\n') + u'a', u"…"_s},
        {u"\u1100"_s.repeated(2000), u"…"_s}, // one character that never ends
    };
    for (const auto &[name, shown] : cases)
        EXPECT_EQ(shownName(name), shown) << name.left(20).toStdString();
}

TEST(LongText, ATextKeepsItsLinesAndLosesItsInvisibleCharacters) {
    EXPECT_EQ(multiLine(u"a\r\nb\rc\u2028d\te\n \u3000\n"_s), u"a\nb\nc\nd e"_s);
    EXPECT_EQ(singleLine(u" a\nb \t\n"_s), u" a b"_s);
    EXPECT_EQ(singleLine(u"a \u0001\u0085"_s), u"a"_s);
    EXPECT_EQ(multiLine(QString(1000, u'x') + QString(5000, u'\n')), QString(1000, u'x'));
    EXPECT_EQ(multiLine(QString(998, u'x') + u"😀y"_s), QString(998, u'x') + u'…');
}

TEST(WindowPlace, IsTheMiddleOfTheScreenAndNeverOverItsUpperLeftEdge) {
    const QRect room = roomForWindows();
    QWidget window;
    window.resize(300, 200);
    window.show(); // the second time the frame is known
    window.hide();
    centreOnScreen(window);
    EXPECT_LE((window.frameGeometry().center() - room.center()).manhattanLength(), 2);
    window.resize(room.size() * 2);
    centreOnScreen(window);
    EXPECT_EQ(window.pos(), room.topLeft());
}

TEST(LongText, ANameFromRightToLeftLeavesTheOrderOfItsSentence) {
    const std::pair<QString, QString> cases[] = {
        {u"Denied Anna. 2 · 3"_s, u"Denied Anna. 2 · 3"_s},
        {u"● של אנה 2 · 1 session"_s, u"● \u2068של אנה 2\u2069 · 1 session"_s},
        {u"A של, אנה\n"_s, u"A \u2068של\u2069, \u2068אנה\u2069\n"_s},
        {u"Denied \u202egnp. If"_s, u"Denied gnp. If"_s}, // would turn the rest of the sentence round
        {u"a\u200f\u200e\u061cb"_s, u"ab"_s},
        {u"𞤀𞤣 😀"_s, u"\u2068𞤀𞤣\u2069 😀"_s},
    };
    for (const auto &[text, shown] : cases)
        EXPECT_EQ(keepOrder(text), shown) << text.toStdString();
}

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
