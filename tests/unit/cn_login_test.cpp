#include "account/cn_login.h"
#include "account/cn_login_view.h"
#include "support/tray_fixture.h"
#include "ui/widgets/cn_login_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <stdexcept>

namespace korvel::test {
namespace {

TEST(CnLoginForm, ACodeThatWasSentOrRefusedStartsItsCountdown) {
    const QString sent = u"Code sent."_s, failed = u"Couldn't finish. Check your network and try again."_s;
    const std::tuple<Result<QJsonObject>, int, QString, QString> cases[] = {
        {object(R"({"ok":true,"next":90})"), 90, sent, {}},
        {object(R"({"ok":true})"), 60, sent, {}},
        {object(R"({"ok":true,"next":1.5})"), 60, sent, {}},
        {object(R"({"ok":true,"next":100000})"), 86400, sent, {}},
        {object(R"({"ok":true,"next":-5})"), 0, sent, {}},
        {object(R"({"ok":false,"retryAfter":20,"error":"Too often."})"), 20, {}, u"Too often."_s},
        {object(R"({"ok":false,"retryAfter":0,"error":""})"), 0, {}, failed},
        {object(R"({"ok":1,"retryAfter":"20"})"), 0, {}, failed},
        {Error{}, 0, {}, failed},
    };
    for (const auto &[reply, countdown, info, error] : cases) {
        CnLoginForm form;
        ASSERT_TRUE(sendCode(form));
        applyCodeResponse(form, reply);
        EXPECT_EQ(form.countdown, countdown);
        EXPECT_EQ(form.info, info);
        EXPECT_EQ(form.error, error);
        EXPECT_EQ(canSendCode(form), countdown == 0);
    }
}

TEST(CnLoginForm, AReplyNamesTheFieldToFocus) {
    const std::tuple<Page, bool, const char *, LoginField> cases[] = {
        {Page::Register, false, R"({"field":"agree"})", LoginField::Agree},
        {Page::Register, false, R"({"field":"phone"})", LoginField::Account},
        {Page::Login, false, R"({"field":"username"})", LoginField::Account},
        {Page::Reset, false, R"({"field":"code"})", LoginField::Code},
        {Page::Reset, false, R"({"field":"password"})", LoginField::Password},
        {Page::Reset, false, R"({"field":"other"})", LoginField::Password}, // the empty one
        {Page::Login, false, R"({"field":"code"})", LoginField::Password},  // not on this page
        {Page::Login, true, "{}", LoginField::Account},                     // none is empty
    };
    for (const auto &[page, codeMode, reply, focus] : cases) {
        CnLoginForm form{.page = page, .codeMode = codeMode, .account = u"a"_s, .code = u"1"_s};
        EXPECT_TRUE(submit(form));
        const SubmitOutcome outcome = applySubmitResponse(form, object(reply));
        EXPECT_TRUE(outcome.bringToFront && !form.busy);
        EXPECT_EQ(outcome.focus, focus) << reply;
    }
}

struct CnLoginTest : TrayFixture {
    using Kind = LoginInput::Kind;
    void reply(const QByteArray &output) { programs.result.output = output; }
    void openWindow() {
        launch();
        item.choose(Action::BrowserLogin);
    }
    void submit() {
        loginPanel.does(Kind::Submit);
        scheduler.runDue();
    }
};

TEST_F(CnLoginTest, ASignInGoesThroughTheAgentAndLeadsToThePairingWindow) {
    agentResponds(ONLINE);
    openWindow();
    ASSERT_TRUE(loginPanel.visible);
    EXPECT_EQ(loginPanel.focused, LoginField::Account);
    loginPanel.does(Kind::Account, u"ann"_s);
    loginPanel.does(Kind::Password, u"secret"_s);
    reply(R"({"ok":false,"error":"Wrong password.","field":"password"})");
    loginPanel.does(Kind::Submit);
    loginPanel.does(Kind::LinkA); // nothing changes while a request is in flight
    loginPanel.does(Kind::Tab, {}, 0);
    EXPECT_TRUE(loginPanel.view.busy);
    EXPECT_EQ(loginPanel.view.title, u"Sign In to Korvel"_s);
    EXPECT_EQ(loginPanel.view.tab, 1);
    scheduler.runDue();
    EXPECT_FALSE(loginPanel.view.busy);
    EXPECT_EQ(loginPanel.view.error, u"Wrong password."_s);
    EXPECT_EQ(loginPanel.focused, LoginField::Password);
    EXPECT_FALSE(programs.runs.back().arguments.join(u' ').contains(u"secret"));
    home.bind();
    reply(R"({"ok":true,"user":"Ann"})");
    const qsizetype polls = http.paths.size();
    submit();
    EXPECT_FALSE(loginPanel.visible);
    EXPECT_EQ(notices.last(), u"● Signed in as Ann"_s);
    EXPECT_EQ(http.paths.size(), polls + 1);
    EXPECT_EQ(pairPanel.presented, 1);
    item.press(Action::BrowserLogin); // a new one, empty
    EXPECT_EQ(loginPanel.view.password.text, u""_s);
}

TEST_F(CnLoginTest, ASignInStartsAnAgentThatIsStopped) {
    const std::tuple<QByteArray, bool, QString, QString> cases[] = {
        {SILENCE, false, u"print enable bootstrap print"_s, u"○ Starting… · ann"_s},
        {SILENCE, true, u"print print"_s, u"○ Starting… · ann"_s},
        {ONLINE, true, u""_s, u"● Connected · ann · 1 session"_s},
    };
    home.installJobFile();
    for (const auto &[response, loaded, calls, line] : cases) {
        home.writeConfig("{}");
        services.loaded = loaded;
        agentResponds(response);
        openWindow();
        loginPanel.does(Kind::Account, u"ann"_s);
        home.bind();
        reply(R"({"ok":true})");
        services.calls.clear();
        submit();
        EXPECT_EQ(services.operations(), calls);
        EXPECT_EQ(item.statusLine(), line);
    }
}

TEST_F(CnLoginTest, TheCountdownRunsAcrossPagesAndOnlyWhileTheWindowIsOpen) {
    const auto sendCode = [this](const QByteArray &output) {
        reply(output);
        loginPanel.does(Kind::SendCode);
        loginPanel.does(Kind::SendCode);
        scheduler.runDue();
    };
    launch();
    item.press(Action::MenuToggle); // needs an account
    ASSERT_TRUE(loginPanel.visible);
    loginPanel.does(Kind::Tab, {}, 0);
    sendCode(R"({"ok":true,"next":3})");
    EXPECT_EQ(programs.runs.size(), 1u);
    EXPECT_EQ(loginPanel.view.sendText, u"Resend in 3s"_s);
    EXPECT_FALSE(loginPanel.view.sendEnabled);
    loginPanel.does(Kind::LinkA);
    scheduler.advance(2s);
    EXPECT_EQ(loginPanel.view.title, u"Sign Up for Korvel"_s);
    EXPECT_EQ(loginPanel.view.sendText, u"Resend in 1s"_s);
    scheduler.advance(1s);
    EXPECT_EQ(loginPanel.view.sendText, u"Get Code"_s);
    EXPECT_TRUE(loginPanel.view.sendEnabled);
    const QScopedValueRollback chinese(ZH, true);
    sendCode(R"({"ok":true,"next":1})");
    EXPECT_EQ(loginPanel.view.sendText, u"1 秒后重新获取"_s);
    loginPanel.does(Kind::Close);
    item.choose(Action::BrowserLogin);
    scheduler.advance(5s); // the old window's timer does not tick in the new one
    EXPECT_EQ(loginPanel.view.sendText, u"获取验证码"_s);
}

TEST_F(CnLoginTest, AfterASignInNothingReportsThatTheLastOneWasLost) {
    installAndBind();
    for (const QByteArray &lost : {SIGNED_OUT, DELETED}) {
        agentResponds(lost);
        openWindow();
        notices.take();
        http.respond = nullptr;
        scheduler.advance(3s); // a poll before the sign-in
        reply(R"({"ok":true,"user":"ann"})");
        submit();
        EXPECT_EQ(item.statusLine(), u"○ Connecting… · ann"_s);
        EXPECT_EQ(pairPanel.view.line, u"Turning on encryption…"_s);
        complete(u"/health"_s, json(SIGNED_OUT));
        EXPECT_FALSE(health().authDead);
        complete(u"/health"_s, json(SIGNED_OUT)); // the poll after it: the agent does not know of the sign-in yet
        EXPECT_EQ(notices.take(), u"● Signed in as ann"_s);
        http.inFlight.clear();
    }
}

TEST_F(CnLoginTest, AReplyForAClosedWindowIsReportedOnlyWhenItSignedIn) {
    openWindow();
    for (const bool signsIn : {false, true}) {
        reply(signsIn ? R"({"ok":true})" : R"({"ok":false,"error":"No."})");
        scheduler.holdsBackground = true;
        loginPanel.does(Kind::Account, u"ann"_s);
        loginPanel.does(Kind::SendCode);
        loginPanel.does(Kind::Submit);
        loginPanel.does(Kind::Close);
        item.choose(Action::BrowserLogin);
        scheduler.releaseBackground();
        EXPECT_EQ(loginPanel.view.error + loginPanel.view.info, u""_s);
        EXPECT_EQ(loginPanel.visible, !signsIn);
        EXPECT_EQ(notices.last() == u"● Signed in as ann", signsIn);
    }
}

TEST_F(CnLoginTest, TheWindowOpensWithTheNameOfALostSignInUnlessItIsMasked) {
    const std::tuple<QByteArray, QString, QString> cases[] = {
        {SIGNED_OUT, u"Sign In to Korvel Again"_s, u"ann"_s},
        {R"({"ok":true,"account":"138****0000","authDead":true})", u"Sign In to Korvel Again"_s, u""_s},
        {DELETED, u"Sign In to Korvel"_s, u""_s},
    };
    installAndBind();
    for (const auto &[response, title, account] : cases) {
        agentResponds(response);
        loginPanel.visible = false;
        openWindow();
        EXPECT_EQ(loginPanel.view.title, title) << response.constData();
        EXPECT_EQ(loginPanel.view.account.text, account);
        EXPECT_EQ(loginPanel.focused, account.isEmpty() ? LoginField::Account : LoginField::Password);
    }
    loginPanel.does(Kind::Account, u"bob"_s);
    item.choose(Action::BrowserLogin); // brings the same window to the front
    EXPECT_EQ(loginPanel.view.account.text, u"bob"_s);
    EXPECT_EQ(loginPanel.presented, 4);
}

/// The sign-in with its real window. Without a reply, every request fails.
struct CnLoginWindowTest : CnLoginTest {
    CnLoginPanel window;

    CnLoginWindowTest() { shownLogin = &window; }
    void TearDown() override { tray.reset(); }
    QJsonObject request() {
        scheduler.runDue();
        return programs.runs.empty() ? QJsonObject() : object(programs.runs.back().input);
    }
    template <class Control>
    static Control *find(const QString &text) {
        for (QWidget *widget : QApplication::allWidgets())
            if (auto *control = qobject_cast<Control *>(widget);
                control && control->isVisible() && control->text() == text)
                return control;
        throw std::runtime_error("no such control: " + text.toStdString());
    }
    static QLineEdit *field(const QString &label) { return qobject_cast<QLineEdit *>(find<QLabel>(label)->buddy()); }
    static void click(const QString &text) { QTest::mouseClick(find<QAbstractButton>(text), Qt::LeftButton); }
    static bool isFocused(const QWidget *control) { return control->window()->focusWidget() == control; }
};

TEST_F(CnLoginWindowTest, EveryControlReachesItsRequest) {
    openWindow();
    click(u"Code"_s);
    QLineEdit *phone = field(u"Phone number"_s);
    EXPECT_TRUE(isFocused(phone));
    phone->insert(u" 138\n"_s);
    phone->setCursorPosition(2);
    const QWidget *shown = phone->window();
    const int height = shown->height();
    find<QPushButton>(u"Get Code"_s)->setFocus();
    click(u"Get Code"_s);
    EXPECT_TRUE(isFocused(field(u"Code"_s)));
    EXPECT_EQ(request(), object(R"({"op":"send-code","phone":"138","purpose":"login"})"));
    field(u"Code"_s)->insert(u"1２3\u3000４\u00A05\u200B\t6 "_s); // full-width digits, every kind of space
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"login-code","phone":"138","code":"123456"})"));
    const QString failed = u"Couldn't finish. Check your network and try again."_s;
    EXPECT_TRUE(find<QLabel>(failed));
    EXPECT_EQ(phone->cursorPosition(), 2);
    EXPECT_EQ(shown->height(), height); // an error has room for its line
    QRadioButton *tab = find<QRadioButton>(u"Code"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(tab->window()));
    tab->setFocus();
    QTest::keyClick(tab, Qt::Key_Right);
    EXPECT_FALSE(isFocused(field(u"Password"_s))); // unlike after a click
    click(u"Password"_s);
    EXPECT_TRUE(isFocused(field(u"Password"_s)));
    field(u"Password"_s)->insert(u" p w "_s);
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"login","username":"138","password":" p w "})"));
    click(u"Code"_s);
    click(u"Forgot password?"_s);
    click(u"Get Code"_s);
    EXPECT_EQ(request(), object(R"({"op":"send-code","phone":"138","purpose":"reset"})"));
    field(u"New password"_s)->insert(u"new"_s);
    reply(R"({"ok":false,"reset":true,"error":"Sign in now."})"); // with the new password
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"reset","phone":"138","code":"123456","password":"new"})"));
    EXPECT_TRUE(find<QLabel>(u"Sign in now."_s));
    EXPECT_EQ(field(u"Account"_s)->text(), u"138"_s);
    EXPECT_EQ(field(u"Password"_s)->text(), u""_s);
    EXPECT_TRUE(isFocused(field(u"Password"_s)));
    click(u"Code"_s);
    EXPECT_THROW(find<QLabel>(u"Sign in now."_s), std::runtime_error);
    reply({});
    click(u"Sign up"_s);
    click(u"Get Code"_s);
    EXPECT_EQ(request(), object(R"({"op":"send-code","phone":"138","purpose":"register"})"));
    find<QCheckBox>(u"I agree to the"_s)->click();
    for (const QString &label : {u"Phone number"_s, u"Code"_s, u"Password"_s}) {
        programs.runs.clear();
        QTest::keyClick(field(label), Qt::Key_Return);
        EXPECT_EQ(request(), object(R"({"op":"register","phone":"138","code":"123456","password":"","agree":true})"));
    }
    click(u"Terms of Service"_s);
    click(u"Privacy Policy"_s);
    EXPECT_EQ(desktop.opened, (QStringList{u"https://site.example/cn/terms"_s, u"https://site.example/cn/privacy"_s}));
    EXPECT_TRUE(find<QLabel>(failed));
    click(u"Back to sign in"_s);
    EXPECT_THROW(find<QLabel>(failed), std::runtime_error); // is about another page
    QTest::keyClick(field(u"Code"_s), Qt::Key_Escape, Qt::ControlModifier);
    EXPECT_TRUE(shown->isVisible());
    QTest::keyClick(field(u"Code"_s), Qt::Key_Escape);
    EXPECT_FALSE(shown->isVisible());
    openWindow();
    EXPECT_EQ(field(u"Account"_s)->text(), u""_s);
}

} // namespace
} // namespace korvel::test
