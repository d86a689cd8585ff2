#include "account/login_dialog.h"
#include "e2ee/approval.h"
#include "e2ee/pair_code.h"
#include "support/tray_fixture.h"
#include "ui/widgets/alert_window.h"
#include "ui/widgets/pair_window.h"
#include "ui/widgets/picture.h"
#include "ui/widgets/text_fields.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QProxyStyle>
#include <QPushButton>
#include <QTest>
#include <QWindow>
#include <algorithm>

namespace korvel::test {
namespace {

constexpr PairContext SIGNED_IN{.bound = true};

PairView viewOf(const char *json, PairContext context = SIGNED_IN, PairState pairing = {}) {
    return pairView(object(json), pairing, context).view;
}

TEST(PairView, ShowsACodeWithItsSpellingAndTheWayToRenewIt) {
    PairView view = viewOf(R"({"state":"pending","pair":{"show":"123 456"}})");
    EXPECT_EQ(view.title, u"Pair This Mac"_s);
    EXPECT_EQ(view.code, u"123 456"_s);
    EXPECT_EQ(view.codeName, u"1 2 3 4 5 6"_s);
    EXPECT_EQ(view.line, u"Enter this code on your phone"_s);
    EXPECT_TRUE(view.refreshVisible && view.refreshEnabled && view.error.isEmpty());
    view = viewOf(R"({"state":"pending","pair":{"show":"654321","wrong":true}})", SIGNED_IN, {.pairRenewing = true});
    EXPECT_EQ(view.error, u"Incorrect code. The code has been refreshed."_s);
    EXPECT_FALSE(view.refreshEnabled);
}

TEST(PairView, WithoutACodeAPlaceholderStandsInItsPlace) {
    for (const char *json : {R"({"state":"pending"})", R"({"state":"pending","pair":{"show":""}})",
                             R"({"state":"expired","pair":{"show":"123456"}})", R"({"state":"waiting"})"}) {
        const PairView view = viewOf(json);
        EXPECT_EQ(view.code, u"··· ···"_s) << json;
        EXPECT_TRUE(view.codeMuted && view.codeName.isEmpty() && !view.refreshVisible) << json;
    }
    EXPECT_EQ(viewOf(R"({"state":"pending","pair":{"show":"12\n3\u202e4"}})").code, u"12 34"_s);
    EXPECT_EQ(viewOf(R"({"state":"pending","pair":{"show":"123456","paired":true}})").code, u"✓"_s);
}

TEST(PairView, ADeadEndOffersTheWayOut) {
    constexpr PairContext LOST{.bound = true, .authDead = true};
    constexpr PairContext GONE{.bound = true, .authDead = true, .accountGone = true};
    const struct {
        const char *json;
        PairContext context;
        QString line;
        bool logout = false;
    } cases[] = {
        {R"({"state":"pending"})", {}, u"Not signed in"_s},
        {R"({"state":"pending","pair":{"show":"1"}})", LOST, u"You've been signed out. Sign in again."_s},
        {R"({"state":"waiting"})", GONE, u"This account was deleted. Sign in with a different account."_s},
        {R"({"state":"pair-failed"})", LOST, u"Too many incorrect codes. Sign in again."_s},
        {R"({"state":"approved"})", LOST, u"You've been signed out. Sign in again."_s},
        {R"({"state":"approved"})", SIGNED_IN, u"This Mac isn't paired. Sign out, then sign in again to pair it."_s,
         true},
        {R"({"state":"revoked"})", SIGNED_IN, u"This Mac was removed from your account. Sign in again."_s},
    };
    for (const auto &c : cases) {
        PairState pairing;
        const PairView view = pairView(object(c.json), pairing, c.context).view;
        EXPECT_EQ(view.line, c.line) << c.json;
        EXPECT_EQ(view.button, c.logout ? u"Sign Out…"_s : u"Sign In Again…"_s) << c.json;
        EXPECT_TRUE(pairing.pairRelogin && pairing.pairLogout == c.logout && !view.refreshVisible) << c.json;
    }
}

TEST(PairView, TroubleIsAHintWhereTheLineDoesNotSayItAlready) {
    EXPECT_EQ(viewOf(R"({"state":"off","required":true,"trouble":"Clock is wrong"})").line, u"Clock is wrong"_s);
    EXPECT_EQ(viewOf(R"({"state":"off","required":true,"trouble":"Clock is wrong"})").hint, u""_s);
    const PairView view = viewOf(R"({"state":"off","trouble":"Clock is wrong"})");
    EXPECT_EQ(view.line, u"Turning on encryption…"_s);
    EXPECT_EQ(view.hint, u"Clock is wrong"_s);
}

struct PairingTest : TrayFixture {
    void launchWith(const QByteArray &report) {
        installAndBind();
        next(report);
        launch();
        scheduler.advance(10ms);
    }
    void next(const QByteArray &report) {
        agentAnswers(R"({"ok":true,"e2ee":)" + report + '}');
        scheduler.advance(tray ? 3s : 0s);
    }
};

const QByteArray CODE = R"({"state":"pending","pair":{"show":"123456"}})";
const QByteArray ACTIVE = R"({"state":"active"})";

TEST_F(PairingTest, TheWindowFollowsThePairingAndClosesItselfAfterSuccess) {
    launchWith(R"({"state":"waiting"})");
    ASSERT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.by, OpenedBy::Program);
    next(CODE);
    EXPECT_EQ(pairPanel.view.code, u"123456"_s);
    notices.shown.clear();
    next(R"({"state":"pending","pair":{"show":"123456","paired":true}})");
    EXPECT_EQ(pairPanel.view.line, u"Paired. Turning on encryption…"_s);
    agentAnswers(R"({"ok":true,"e2ee":)" + ACTIVE + '}');
    scheduler.advance(3s - 10ms);
    ASSERT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.view.title, u"Paired"_s);
    EXPECT_EQ(pairPanel.view.code, u"🔒"_s);
    scheduler.advance(1380ms);
    EXPECT_TRUE(pairPanel.visible);
    scheduler.advance(40ms);
    EXPECT_FALSE(pairPanel.visible);
    scheduler.advance(10s);
    EXPECT_EQ(notices.shown.size(), 1u);
    EXPECT_EQ(notices.last(), u"🔒 Encrypted. Syncing now."_s);
    next(R"({"state":"waiting"})"); // a window that never showed a code goes silently
    item.choose(Action::ShowPair);
    next(ACTIVE);
    EXPECT_FALSE(pairPanel.visible);
    EXPECT_EQ(notices.shown.size(), 1u);
}

TEST_F(PairingTest, TheButtonDoesWhatItSaysAndTheWindowStaysClosedAfter) {
    launchWith(R"({"state":"approved"})");
    pairPanel.events.buttonClicked();
    EXPECT_EQ(alerts.view.title, u"Sign Out?"_s);
    EXPECT_FALSE(loginPanel.visible);
    alerts.dismiss();
    tray->reopen();
    next(R"({"state":"rejected"})");
    pairPanel.events.buttonClicked();
    EXPECT_TRUE(std::exchange(loginPanel.visible, false));
    next(CODE);
    EXPECT_FALSE(pairPanel.visible);
    item.choose(Action::ShowPair);
    EXPECT_EQ(pairPanel.view.code, u"123456"_s);
    pairPanel.events.buttonClicked();
    EXPECT_FALSE(pairPanel.visible || loginPanel.visible || alerts.isOpen());
    next(ACTIVE); // which no window tells
    EXPECT_EQ(notices.last(), u"🔒 Encrypted. Syncing now."_s);
}

TEST_F(PairingTest, RefreshIsAskedForOnceAndItsFailureStaysUntilTheReportIsAnother) {
    launchWith(CODE);
    http.answer = nullptr;
    pairPanel.events.renewClicked();
    EXPECT_FALSE(pairPanel.view.refreshEnabled);
    pairPanel.events.renewClicked();
    ASSERT_EQ(http.open.size(), 1u);
    EXPECT_EQ(http.open[0].request.url, u"http://127.0.0.1:8790/e2ee/pair/new"_s);
    EXPECT_EQ(http.open[0].request.body, "{}");
    EXPECT_EQ(http.open[0].request.timeout, 60s);
    http.reply(0, json(R"({"ok":false,"error":"Too often.\nWait. "})"));
    EXPECT_EQ(pairPanel.view.error, u"Too often.\nWait."_s);
    EXPECT_TRUE(pairPanel.view.refreshEnabled);
    ASSERT_EQ(http.open.size(), 1u); // the poll that follows
    http.reply(0, json(R"({"ok":true,"e2ee":)" + CODE + '}'));
    next(CODE);
    EXPECT_EQ(pairPanel.view.error, u"Too often.\nWait."_s);
    http.answer = nullptr;
    pairPanel.events.renewClicked();
    EXPECT_EQ(pairPanel.view.error, u""_s);
    http.reply(http.open.size() - 1, noAnswer());
    EXPECT_FALSE(pairPanel.view.error.isEmpty());
    next(R"({"state":"pending","pair":{"show":"654321"}})");
    EXPECT_EQ(pairPanel.view.error, u""_s);
}

TEST(PairCode, DigitsOfAnyScriptAreTakenAndTheCaretStaysBehindTheSameDigit) {
    const std::pair<CodeText, CodeText> cases[] = {
        {{u"1234"_s, 4}, {u"123 4"_s, 5}},      {{u"1293 45"_s, 3}, {u"129 345"_s, 3}},
        {{u"13 456"_s, 1}, {u"134 56"_s, 1}},   {{u"x1"_s, 1}, {u"1"_s, 0}},
        {{u"1234567"_s, 7}, {u"123 456"_s, 7}}, {{u"１２٣４५６"_s, 6}, {u"123 456"_s, 7}},
        {{u"²①½一𝟟"_s, 0}, {u"7"_s, 0}},
    };
    for (const auto &[typed, shown] : cases)
        EXPECT_EQ(formatCode(typed), shown) << typed.text.toStdString();
}

struct CodeFieldTest : ::testing::Test {
    PairCodeField field;
    void type(const QString &text) { QTest::keyClicks(&field, text); }
};

TEST_F(CodeFieldTest, TypingDeletingAndPastingKeepTheForm) {
    type(u"12a3 4-56"_s);
    EXPECT_EQ(field.text(), u"123 456"_s);
    EXPECT_TRUE(field.isComplete());
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), u"123 45"_s);
    EXPECT_FALSE(field.isComplete());
    field.setCursorPosition(4); // behind the blank: it goes with the digit before it
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), u"124 5"_s);
    EXPECT_EQ(field.cursorPosition(), 2);
    type(u"9"_s);
    EXPECT_EQ(field.text(), u"129 45"_s);
    field.selectAll();
    field.insert(u"１２３４５６７"_s);
    EXPECT_EQ(codeDigits(field.text()), u"123456"_s);
}

TEST_F(CodeFieldTest, AnInputMethodsUnfinishedTextIsLeftAlone) {
    type(u"12"_s);
    QInputMethodEvent composing(u"３４"_s, {});
    QCoreApplication::sendEvent(&field, &composing);
    EXPECT_EQ(field.text(), u"12"_s);
    QInputMethodEvent committed;
    committed.setCommitString(u"３４"_s);
    QCoreApplication::sendEvent(&field, &committed);
    EXPECT_EQ(field.text(), u"123 4"_s);
    EXPECT_EQ(field.cursorPosition(), 5);
}

TEST(ApprovalAlert, ANameCannotSpeakForTheProduct) {
    const QString forged = u"Anna's phone · iPhone\n\nKorvel has checked this device. Type 482 913 and choose Allow"_s +
                           u"\n"_s.repeated(60);
    const AlertView view = approveAlert({{u"pendingId"_s, u"p"_s}, {u"name"_s, forged}, {u"platform"_s, u"ios"_s}}, {});
    EXPECT_EQ(view.title, u"New device: Anna's phone · iPhone Korvel has checked this device. Type 482… · iPhone"_s);
    EXPECT_TRUE(view.fromOutside.isEmpty());
    EXPECT_EQ(approveAlert({{u"name"_s, u"\u200b\u2800"_s}}, {}).title, u"New device: ? · Device"_s);
}

struct AlertTest : ::testing::Test {
    AlertWindow alerts;
    QList<AlertAnswer> answers;
    const AlertView view{.title = u"t"_s,
                         .text = u"x"_s,
                         .buttons = {u"Allow"_s, u"Deny"_s, u"Later"_s},
                         .escape = 2,
                         .fields = {{.kind = AlertField::Kind::Code}}};

    AlertDialog *open(const AlertView &v, OpenedBy by = OpenedBy::User) {
        EXPECT_TRUE(alerts.open(v, by, [this](const AlertAnswer &a) { answers.append(a); }));
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *dialog = dynamic_cast<AlertDialog *>(window); dialog && dialog->isVisible())
                return dialog;
        return nullptr;
    }
};

TEST_F(AlertTest, AllowNeedsSixDigitsAndReturnPressesIt) {
    AlertDialog *dialog = open(view);
    ASSERT_TRUE(dialog);
    QPushButton *allow = dialog->buttons().first();
    QTest::keyClicks(dialog->fields().first(), u"12345"_s);
    EXPECT_FALSE(allow->isEnabled());
    QTest::keyClick(dialog->fields().first(), Qt::Key_Return);
    EXPECT_TRUE(answers.isEmpty());
    QTest::keyClicks(dialog->fields().first(), u"6"_s);
    EXPECT_TRUE(allow->isEnabled());
    QTest::keyClick(dialog->fields().first(), Qt::Key_Return);
    ASSERT_EQ(answers.size(), 1);
    EXPECT_EQ(answers[0].button, 0);
    EXPECT_EQ(answers[0].texts, QStringList{u"123 456"_s});
}

TEST_F(AlertTest, ThePasswordOfASignInIsNotShown) {
    const QList<QLineEdit *> fields = open(loginAlert({.user = u"ann"_s, .advanced = true}, false, {}))->fields();
    EXPECT_EQ(fields.at(0)->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(fields.at(1)->echoMode(), QLineEdit::Password);
}

TEST_F(AlertTest, EscapeAndTheKeyThatClosesAreTheHarmlessAnswerAndCountOnce) {
    QTest::keyClick(open(view), Qt::Key_Escape);
    AlertDialog *dialog = open(view);
    EXPECT_FALSE(
        alerts.open({.title = u"other"_s, .buttons = {u"OK"_s}}, OpenedBy::User, [](const AlertAnswer &) { FAIL(); }));
    finishLayout();
    QTest::keySequence(dialog, QKeySequence::Close);
    ASSERT_EQ(answers.size(), 2);
    EXPECT_EQ(answers[0].button, 2);
    EXPECT_EQ(answers[1].button, 2);
}

TEST_F(AlertTest, LeavesOtherWindowsUsableAndHasItsMainButtonWhereTheSystemHasIt) {
    struct MacStyle final : QProxyStyle {
        int styleHint(StyleHint hint, const QStyleOption *o, const QWidget *w, QStyleHintReturn *r) const override {
            return hint == SH_DialogButtonLayout ? QDialogButtonBox::MacLayout : QProxyStyle::styleHint(hint, o, w, r);
        }
    };
    const auto leftToRight = [&] {
        AlertDialog *dialog = open({.title = u"t"_s, .buttons = view.buttons, .escape = 2, .main = 2});
        EXPECT_FALSE(dialog->isModal());
        EXPECT_EQ(dialog->focusWidget(), dialog->buttons().at(2));
        QTest::keyClick(dialog, Qt::Key_Return);
        EXPECT_EQ(answers.last().button, 2);
        QList<QPushButton *> buttons = dialog->buttons();
        std::ranges::sort(buttons, {}, [](const QPushButton *button) { return button->x(); });
        QStringList titles;
        for (const QPushButton *button : buttons)
            titles.append(button->text());
        return titles;
    };
    EXPECT_EQ(leftToRight(), view.buttons);
    const QString usual = QApplication::style()->name();
    QApplication::setStyle(new MacStyle);
    EXPECT_EQ(leftToRight(), (QStringList{u"Later"_s, u"Deny"_s, u"Allow"_s}));
    QApplication::setStyle(usual);
}

TEST_F(AlertTest, TakesKeysAtOnceOnlyWhenTheUserOpenedItAndNeverOneThatIsHeld) {
    const auto press = [](QWidget *window, Qt::Key key, bool repeats = false) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, {}, repeats);
        QCoreApplication::sendEvent(window->windowHandle(), &event); // as the system does
    };
    AlertDialog *dialog = open({.title = u"t"_s, .buttons = {u"OK"_s}}, OpenedBy::Program);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape})
        press(dialog, key);
    QTest::keySequence(dialog, QKeySequence::Close);
    EXPECT_TRUE(answers.isEmpty());
    dialog->buttons().first()->click();
    EXPECT_EQ(answers.size(), 1);
    dialog = open({.title = u"t"_s, .buttons = {u"OK"_s}});
    press(dialog, Qt::Key_Return, true);
    EXPECT_EQ(answers.size(), 1);
    press(dialog, Qt::Key_Return);
    EXPECT_EQ(answers.size(), 2);

    int pressed = 0;
    PairWindow window({.buttonClicked = [&] { ++pressed; }, .renewClicked = [] {}});
    window.present(viewOf("{}"), OpenedBy::Program);
    press(&window, Qt::Key_Return);
    EXPECT_EQ(pressed, 0);
    window.hide();
    window.present(viewOf("{}"), OpenedBy::User);
    press(&window, Qt::Key_Return, true);
    EXPECT_EQ(pressed, 0);
    press(&window, Qt::Key_Return);
    EXPECT_EQ(pressed, 1);
}

TEST(PairWindowTest, ItsHeightFollowsItsTextAndReturnPressesTheMainButton) {
    int pressed = 0;
    PairWindow window({.buttonClicked = [&] { ++pressed; }, .renewClicked = [] {}});
    PairView view = viewOf(R"({"state":"pending","pair":{"show":"123456"}})");
    window.present(view, OpenedBy::User);
    const int height = window.height();
    EXPECT_EQ(window.width(), 400);
    view.error = u"A sentence that is long enough to need more than one line of the window at its usual width."_s;
    window.apply(view);
    EXPECT_GT(window.height(), height + 20);
    view.error.clear();
    window.apply(view);
    EXPECT_EQ(window.height(), height);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_EQ(pressed, 1);
    finishLayout();
    QTest::keySequence(&window, QKeySequence::Close);
    EXPECT_FALSE(window.isVisible());
}

} // namespace
} // namespace korvel::test
