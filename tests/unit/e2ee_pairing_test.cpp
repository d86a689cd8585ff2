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
#include <stdexcept>

namespace korvel::test {
namespace {

constexpr PairContext SIGNED_IN{.bound = true};

PairView viewOf(const char *json, PairContext context = SIGNED_IN) {
    PairState pairing;
    return pairView(object(json), pairing, context).view;
}

TEST(PairView, ShowsTheCodeTheSituationAndTheNextStep) {
    constexpr PairContext LOST{.bound = true, .authDead = true};
    constexpr PairContext DELETED{.bound = true, .authDead = true, .accountGone = true};
    const QString enter = u" | Enter this code on your phone | Korvel on your phone will prompt you for it."_s;
    const struct {
        const char *report;
        QString shown; ///< Code, line, hint, error and buttons.
        PairContext context = SIGNED_IN;
    } cases[] = {
        {R"({"state":"pending","pair":{"show":"12"}})", u"12"_s + enter + u" | Close | Refresh"_s},
        {R"({"state":"pending","pair":{"show":"12","wrong":true}})",
         u"12"_s + enter + u" | Incorrect code. The code has been refreshed. | Close | Refresh"_s},
        {R"({"state":"pending","pair":{"show":""}})", u"Getting a pairing code… | Close"_s},
        {R"({"state":"pending","pair":{"show":"12\n3\u202e4"}})", u"12 34"_s + enter + u" | Close | Refresh"_s},
        {R"({"state":"expired","pair":{"show":"12"}})", u"The pairing code expired. Refreshing… | Close"_s},
        {R"({"state":"pending","pair":{"paired":true}})", u"✓ | Paired. Turning on encryption… | Close"_s},
        {R"({"state":"off","required":true,"trouble":"Clock is wrong"})", u"Clock is wrong | Close"_s},
        {R"({"state":"off","trouble":"Clock is wrong"})", u"Turning on encryption… | Clock is wrong | Close"_s},
        {R"({"state":"pending"})", u"Not signed in | Sign In Again…"_s, {}},
        {R"({"state":"expired"})", u"You've been signed out. Sign in again. | Sign In Again…"_s, LOST},
        {R"({"state":"waiting"})", u"This account was deleted. Sign in with a different account. | Sign In Again…"_s,
         DELETED},
        {R"({"state":"pair-failed"})", u"Too many incorrect codes. Sign in again. | Sign In Again…"_s, LOST},
        {R"({"state":"approved"})", u"You've been signed out. Sign in again. | Sign In Again…"_s, LOST},
        {R"({"state":"approved"})", u"This Mac isn't paired. Sign out, then sign in again to pair it. | Sign Out…"_s},
        {R"({"state":"revoked"})", u"This Mac was removed from your account. Sign in again. | Sign In Again…"_s},
    };
    for (const auto &c : cases) {
        const PairView view = viewOf(c.report, c.context);
        EXPECT_EQ(view.codeMuted, view.code == u"··· ···") << c.report;
        QStringList shown{view.codeMuted ? QString() : view.code,        view.line, view.hint, view.error, view.button,
                          view.refreshVisible ? u"Refresh"_s : QString()};
        shown.removeAll(QString());
        EXPECT_EQ(shown.join(u" | "), c.shown) << c.report;
    }
    EXPECT_EQ(viewOf(R"({"state":"pending","pair":{"show":"123 456"}})").codeName, u"1 2 3 4 5 6"_s);
}

using PairingTest = TrayFixture;

const QByteArray CODE = R"({"state":"pending","pair":{"show":"123456"}})";
const QByteArray ACTIVE = R"({"state":"active"})";

TEST_F(PairingTest, TheWindowFollowsThePairingAndClosesAfterSuccess) {
    launchBound(withReport(R"({"state":"waiting"})"));
    ASSERT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.by, OpenedBy::Program);
    nextReport(CODE);
    EXPECT_EQ(pairPanel.view.code, u"123456"_s);
    forget();
    nextReport(ACTIVE);
    item.press(Action::ShowPair); // in a menu that is still open
    ASSERT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.view.title, u"Paired"_s);
    EXPECT_EQ(pairPanel.view.code, u"🔒"_s);
    scheduler.advance(1380ms);
    EXPECT_TRUE(pairPanel.visible);
    scheduler.advance(40ms);
    EXPECT_FALSE(pairPanel.visible);
    scheduler.advance(10s);
    EXPECT_EQ(notices.take(), u"🔒 Encrypted. Syncing now."_s);
    nextReport(R"({"state":"waiting"})"); // a window that never showed a code closes silently
    item.choose(Action::ShowPair);
    nextReport(ACTIVE);
    EXPECT_FALSE(pairPanel.visible);
    EXPECT_EQ(notices.take(), u""_s);
}

TEST_F(PairingTest, EachButtonActsAndTheWindowStaysClosed) {
    launchBound(withReport(R"({"state":"approved"})"));
    pairPanel.events.buttonClicked();
    EXPECT_EQ(alerts.view.title, u"Sign Out?"_s);
    EXPECT_FALSE(alerts.view.warning || loginPanel.visible);
    alerts.dismiss();
    tray->reopen();
    nextReport(R"({"state":"rejected"})");
    pairPanel.events.buttonClicked();
    EXPECT_TRUE(std::exchange(loginPanel.visible, false));
    nextReport(CODE);
    EXPECT_FALSE(pairPanel.visible);
    item.choose(Action::ShowPair);
    EXPECT_EQ(pairPanel.view.code, u"123456"_s);
    pairPanel.events.buttonClicked();
    EXPECT_FALSE(pairPanel.visible || loginPanel.visible || alerts.isOpen());
    nextReport(ACTIVE);
    EXPECT_EQ(notices.last(), u"🔒 Encrypted. Syncing now."_s); // in place of the window
}

TEST_F(PairingTest, ACodeIsRenewedByOneRequestWhoseErrorStaysUntilTheReportChanges) {
    launchBound(withReport(CODE));
    http.respond = nullptr;
    pairPanel.events.renewClicked();
    EXPECT_FALSE(pairPanel.view.refreshEnabled);
    pairPanel.events.renewClicked();
    ASSERT_EQ(http.inFlight.size(), 1u);
    EXPECT_EQ(http.last.url, u"http://127.0.0.1:8790/e2ee/pair/new"_s);
    EXPECT_EQ(http.last.body, "{}");
    EXPECT_EQ(http.last.timeout, 60s);
    http.complete(0, json(R"({"ok":false,"error":"Too often.\nWait. "})"));
    EXPECT_TRUE(pairPanel.view.refreshEnabled);
    complete(u"/health"_s, json(withReport(CODE))); // the poll that follows
    nextReport(CODE);
    item.choose(Action::ShowPair);
    EXPECT_EQ(pairPanel.view.error, u"Too often.\nWait."_s);
    http.respond = nullptr;
    pairPanel.events.renewClicked();
    EXPECT_EQ(pairPanel.view.error, u""_s);
    complete(u"/e2ee/pair/new"_s, noResponse());
    EXPECT_FALSE(pairPanel.view.error.isEmpty());
    nextReport(R"({"state":"pending","pair":{"show":"654321"}})");
    EXPECT_EQ(pairPanel.view.error, u""_s);
}

TEST(PairCode, DigitsOfAnyScriptAreTakenAndTheCaretStaysBehindTheSameDigit) {
    const std::pair<CodeText, CodeText> cases[] = {
        {{u"1234"_s, 4}, {u"123 4"_s, 5}},      {{u"1293 45"_s, 3}, {u"129 345"_s, 3}},
        {{u"13 456"_s, 1}, {u"134 56"_s, 1}},   {{u"x1"_s, 1}, {u"1"_s, 0}},
        {{u"1234567"_s, 7}, {u"123 456"_s, 7}}, {{u"１２٣４५６"_s, 6}, {u"123 456"_s, 7}},
        {{u"²①½一𝟟"_s, 0}, {u"7"_s, 0}},        {{u"12"_s, 0}, {u"12"_s, 0}},
    };
    for (const auto &[typed, shown] : cases)
        EXPECT_EQ(formatCode(typed), shown) << typed.text.toStdString();
}

TEST(CodeField, KeepsItsFormAndLeavesUnfinishedTextOfAnInputMethodAlone) {
    PairCodeField field;
    QTest::keyClicks(&field, u"12a3 4-56"_s);
    EXPECT_EQ(field.text(), u"123 456"_s);
    EXPECT_TRUE(field.isComplete());
    field.setCursorPosition(4); // behind the space, which goes with the digit before it
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), u"124 56"_s);
    EXPECT_FALSE(field.isComplete());
    EXPECT_EQ(field.cursorPosition(), 2);
    QInputMethodEvent composing(u"３４"_s, {}), committed;
    QCoreApplication::sendEvent(&field, &composing);
    EXPECT_EQ(field.text(), u"124 56"_s);
    committed.setCommitString(u"３４"_s);
    QCoreApplication::sendEvent(&field, &committed);
    EXPECT_EQ(field.text(), u"123 445"_s);
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
    QList<int> pressed;
    QStringList texts; ///< Of the fields, with the last answer.
    const AlertView view{.title = u"t"_s,
                         .text = u"x"_s,
                         .buttons = {u"Allow"_s, u"Deny"_s, u"Later"_s},
                         .escape = 2,
                         .fields = {{.kind = AlertField::Kind::Code}}};

    AlertDialog *open(const AlertView &v, OpenedBy by = OpenedBy::User) {
        EXPECT_TRUE(alerts.open(v, by, [this](const AlertAnswer &answer) {
            pressed.append(answer.button);
            texts = answer.texts;
        }));
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *dialog = dynamic_cast<AlertDialog *>(window); dialog && dialog->isVisible())
                return dialog;
        throw std::runtime_error("no alert");
    }
};

TEST_F(AlertTest, AllowNeedsSixDigitsAndReturnPressesIt) {
    const AlertDialog *dialog = open(view);
    QLineEdit *field = dialog->fields().first();
    for (const QString &digits : {u"12345"_s, u"6"_s}) {
        EXPECT_FALSE(dialog->buttons().first()->isEnabled());
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_TRUE(pressed.isEmpty());
        QTest::keyClicks(field, digits);
    }
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(pressed, QList{0});
    EXPECT_EQ(texts, QStringList{u"123 456"_s});
}

TEST_F(AlertTest, ThePasswordOfASignInIsNotShown) {
    const QList<QLineEdit *> fields = open(loginAlert({.user = u"ann"_s, .advanced = true}, false, {}))->fields();
    EXPECT_EQ(fields.at(0)->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(fields.at(1)->echoMode(), QLineEdit::Password);
    EXPECT_EQ(loginAlert({}, false, {}).fields.size(), 2); // the server is for those who know the Option key
}

TEST_F(AlertTest, EscapeAndCloseGiveTheHarmlessAnswerOnce) {
    QTest::keyClick(open(view), Qt::Key_Escape);
    AlertDialog *dialog = open(view);
    EXPECT_FALSE(alerts.open(view, OpenedBy::User, [](const AlertAnswer &) { FAIL(); }));
    finishLayout();
    QTest::keySequence(dialog, QKeySequence::Close);
    EXPECT_EQ(pressed, (QList{2, 2}));
}

TEST_F(AlertTest, LeavesOtherWindowsUsableAndItsButtonsFollowTheSystem) {
    struct MacStyle final : QProxyStyle {
        int styleHint(StyleHint hint, const QStyleOption *o, const QWidget *w, QStyleHintReturn *r) const override {
            return hint == SH_DialogButtonLayout ? QDialogButtonBox::MacLayout : QProxyStyle::styleHint(hint, o, w, r);
        }
    };
    const QString usual = QApplication::style()->name();
    QApplication::setStyle(new MacStyle);
    AlertDialog *dialog = open({.title = u"t"_s, .buttons = view.buttons, .escape = 2, .main = 2});
    EXPECT_FALSE(dialog->isModal());
    const QList<QPushButton *> buttons = dialog->buttons();
    EXPECT_TRUE(buttons[2]->x() < buttons[1]->x() && buttons[1]->x() < buttons[0]->x());
    EXPECT_EQ(dialog->focusWidget(), buttons[2]);
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_EQ(pressed, QList{2});
    QApplication::setStyle(usual);
}

/// Sends a key to a window as the system does.
void press(QWidget *window, Qt::Key key, bool repeats = false) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, {}, repeats);
    QCoreApplication::sendEvent(window->windowHandle(), &event);
}

TEST_F(AlertTest, TakesKeysAtOnceOnlyWhenTheUserOpenedItAndNeverAHeldOne) {
    const AlertView message{.title = u"t"_s, .buttons = {u"OK"_s}};
    AlertDialog *dialog = open(message, OpenedBy::Program);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape})
        press(dialog, key);
    QTest::keySequence(dialog, QKeySequence::Close);
    EXPECT_TRUE(pressed.isEmpty());
    dialog->buttons().first()->click();
    EXPECT_EQ(pressed.size(), 1);
    dialog = open(message);
    press(dialog, Qt::Key_Return, true);
    EXPECT_EQ(pressed.size(), 1);
    press(dialog, Qt::Key_Return);
    EXPECT_EQ(pressed.size(), 2);
}

TEST(PairWindowTest, ReturnPressesTheMainButtonAndOnlyTheCloseKeyCloses) {
    int pressed = 0;
    PairWindow window({.buttonClicked = [&] { ++pressed; }, .renewClicked = [] {}});
    window.present(viewOf("{}"), OpenedBy::Program);
    press(&window, Qt::Key_Return);
    window.hide();
    window.present(viewOf("{}"), OpenedBy::User);
    press(&window, Qt::Key_Return, true);
    EXPECT_EQ(pressed, 0);
    press(&window, Qt::Key_Return);
    EXPECT_EQ(pressed, 1);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    finishLayout();
    QTest::keySequence(&window, QKeySequence::Close);
    EXPECT_FALSE(window.isVisible());
}

} // namespace
} // namespace korvel::test
