#include "account/cn_login.h"
#include "account/cn_login_view.h"
#include "support/tray_fixture.h"
#include "ui/widgets/cn_login_window.h"
#include "ui/widgets/picture.h"
#include "ui/widgets/windows.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <stdexcept>

namespace korvel::test {
namespace {

TEST(CnLoginForm, EachPageSendsWhatWasTypedWithoutBlanksAndOneRequestAtATime) {
    CnLoginForm form = openCnLoginForm(false, {});
    form.account = u" 13800000000\n"_s;
    form.code = u"1２3\u3000４\u00A05\u200B\t6 "_s; // full-width digits; every kind of blank
    form.password = u" p w "_s;
    form.agree = true;
    const struct {
        Page page;
        bool codeMode;
        const char *request;
        QString purpose;
    } cases[] = {
        {Page::Login, false, R"({"op":"login","username":"13800000000","password":" p w "})", u"login"_s},
        {Page::Login, true, R"({"op":"login-code","phone":"13800000000","code":"123456"})", u"login"_s},
        {Page::Register, false,
         R"({"op":"register","phone":"13800000000","code":"123456","password":" p w ","agree":true})", u"register"_s},
        {Page::Reset, false, R"({"op":"reset","phone":"13800000000","code":"123456","password":" p w "})", u"reset"_s},
    };
    for (const auto &c : cases) {
        form.page = c.page;
        form.codeMode = c.codeMode;
        CnLoginForm sending = form, submitting = form;
        EXPECT_EQ(sendCode(sending)->value(u"purpose"), c.purpose);
        EXPECT_EQ(sendCode(sending), std::nullopt);
        EXPECT_EQ(submit(submitting), object(c.request));
        EXPECT_TRUE(!submit(submitting) && !sendCode(submitting));
    }
}

TEST(CnLoginForm, ACodeThatWasSentOrRefusedStartsItsCountdown) {
    const struct {
        const char *answer; // null: none
        int countdown;
        QString info, error;
    } cases[] = {
        {R"({"ok":true,"next":90})", 90, u"Code sent."_s, {}},
        {R"({"ok":true})", 60, u"Code sent."_s, {}},
        {R"({"ok":true,"next":1.5})", 60, u"Code sent."_s, {}},
        {R"({"ok":true,"next":100000})", 86400, u"Code sent."_s, {}},
        {R"({"ok":true,"next":-5})", 0, u"Code sent."_s, {}},
        {R"({"ok":false,"retryAfter":20,"error":"Too often."})", 20, {}, u"Too often."_s},
        {R"({"ok":false,"retryAfter":0,"error":""})", 0, {}, u"Couldn't finish. Check your network and try again."_s},
        {R"({"ok":1,"retryAfter":"20"})", 0, {}, u"Couldn't finish. Check your network and try again."_s},
        {nullptr, 0, {}, u"Couldn't finish. Check your network and try again."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer ? c.answer : "none");
        CnLoginForm form;
        ASSERT_TRUE(sendCode(form));
        applyCodeResponse(form, c.answer ? Result(object(c.answer)) : Error{});
        EXPECT_EQ(form.countdown, c.countdown);
        EXPECT_EQ(form.info, c.info);
        EXPECT_EQ(form.error, c.error);
        EXPECT_EQ(canSendCode(form), c.countdown == 0);
    }
}

TEST(CnLoginForm, AnAnswerNamesTheFieldToLookAt) {
    const auto focusAfter = [](Page page, const char *answer, bool codeMode = false) {
        CnLoginForm form;
        form.page = page;
        form.codeMode = codeMode;
        form.account = u"a"_s;
        form.code = u"1"_s;
        EXPECT_TRUE(submit(form));
        const SubmitOutcome outcome = applySubmitResponse(form, object(answer));
        EXPECT_FALSE(form.busy);
        EXPECT_TRUE(outcome.bringToFront);
        return outcome.focus;
    };
    EXPECT_EQ(focusAfter(Page::Register, R"({"field":"agree"})"), LoginField::Agree);
    EXPECT_EQ(focusAfter(Page::Register, R"({"field":"phone"})"), LoginField::Account);
    EXPECT_EQ(focusAfter(Page::Login, R"({"field":"username"})"), LoginField::Account);
    EXPECT_EQ(focusAfter(Page::Reset, R"({"field":"code"})"), LoginField::Code);
    EXPECT_EQ(focusAfter(Page::Reset, R"({"field":"password"})"), LoginField::Password);
    EXPECT_EQ(focusAfter(Page::Reset, R"({"field":"other"})"), LoginField::Password); // the empty one
    EXPECT_EQ(focusAfter(Page::Login, R"({"field":"code"})"), LoginField::Password);  // not on this page
    EXPECT_EQ(focusAfter(Page::Login, "{}", true), LoginField::Account);              // none is empty
}

TEST(CnLoginForm, AResetWhoseSignInFailedAsksForTheNewPassword) {
    CnLoginForm form;
    form.page = Page::Reset;
    form.codeMode = true;
    form.account = u" 138 "_s;
    form.password = u"new"_s;
    ASSERT_TRUE(submit(form));
    const SubmitOutcome outcome =
        applySubmitResponse(form, object(R"({"ok":false,"reset":true,"error":"Sign in now."})"));
    EXPECT_EQ(form.page, Page::Login);
    EXPECT_FALSE(form.codeMode || form.busy);
    EXPECT_EQ(form.account, u"138"_s);
    EXPECT_EQ(form.password, u""_s);
    EXPECT_EQ(form.error, u"Sign in now."_s);
    EXPECT_EQ(outcome.focus, LoginField::Password);
}

struct CnLoginTest : TrayFixture {
    using Kind = LoginInput::Kind;
    void answer(const QByteArray &reply) { programs.result.output = reply; }
    QJsonObject lastRequest() const {
        return programs.runs.empty() ? QJsonObject() : QJsonDocument::fromJson(programs.runs.back().input).object();
    }
    void openWindow() {
        launch();
        item.choose(Action::BrowserLogin);
    }
};

TEST_F(CnLoginTest, ASignInGoesThroughTheAgentAndLeadsToThePairingWindow) {
    agentAnswers(ONLINE);
    openWindow();
    ASSERT_TRUE(loginPanel.visible);
    EXPECT_EQ(loginPanel.focused, LoginField::Account);
    loginPanel.does(Kind::Account, u"ann"_s);
    loginPanel.does(Kind::Password, u"secret"_s);
    answer(R"({"ok":false,"error":"Wrong password.","field":"password"})");
    loginPanel.does(Kind::Submit);
    EXPECT_TRUE(loginPanel.view.busy);
    scheduler.runDue();
    EXPECT_FALSE(loginPanel.view.busy);
    EXPECT_EQ(loginPanel.view.error, u"Wrong password."_s);
    EXPECT_EQ(loginPanel.focused, LoginField::Password);
    EXPECT_EQ(lastRequest(), object(R"({"op":"login","username":"ann","password":"secret"})"));
    EXPECT_FALSE(programs.runs.back().arguments.join(u' ').contains(u"secret"));
    loginPanel.does(Kind::Account, {});
    loginPanel.does(Kind::TabClick);
    EXPECT_EQ(loginPanel.focused, LoginField::Account);
    loginPanel.does(Kind::Account, u"ann"_s);

    home.bind();
    answer(R"({"ok":true,"user":"Ann"})");
    const int polls = http.count;
    loginPanel.does(Kind::Submit);
    scheduler.runDue();
    EXPECT_FALSE(loginPanel.visible);
    EXPECT_EQ(notices.last(), u"● Signed in as Ann"_s);
    EXPECT_EQ(http.count, polls + 1);
    EXPECT_EQ(pairPanel.presented, 1);
    item.press(Action::BrowserLogin); // a new one, empty
    EXPECT_EQ(loginPanel.view.password.text, u""_s);
}

TEST_F(CnLoginTest, ASignInStartsAnAgentThatIsStopped) {
    const struct {
        bool responds, loaded;
        QStringList calls;
    } cases[] = {
        {false,
         false,
         {u"print com.korvel.agent"_s, u"enable com.korvel.agent"_s, u"bootstrap com.korvel.agent.plist"_s}},
        {false, true, {u"print com.korvel.agent"_s}},
        {true, true, {}},
    };
    for (const auto &c : cases) {
        home.writeConfig("{}");
        home.installJobFile();
        services.loaded = c.loaded;
        if (c.responds)
            agentAnswers(ONLINE);
        else
            agentIsSilent();
        openWindow();
        loginPanel.does(Kind::Account, u"ann"_s);
        home.bind();
        answer(R"({"ok":true})");
        services.calls.clear();
        loginPanel.does(Kind::Submit);
        scheduler.runDue();
        EXPECT_EQ(services.calls.mid(0, std::max<qsizetype>(c.calls.size(), 1)), c.calls);
        EXPECT_TRUE(services.loaded);
        EXPECT_EQ(item.statusLine(), c.responds ? u"● Connected · ann · 1 session"_s : u"○ Starting… · ann"_s);
    }
}

TEST_F(CnLoginTest, TheCountdownRunsAcrossPagesAndOnlyWhileTheWindowIsOpen) {
    openWindow();
    loginPanel.does(Kind::Tab, {}, 0);
    answer(R"({"ok":true,"next":3})");
    loginPanel.does(Kind::SendCode);
    loginPanel.does(Kind::SendCode);
    scheduler.runDue();
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
    const LanguageScope chinese(true);
    answer(R"({"ok":true,"next":1})");
    for (const milliseconds second : {1s, 0s}) {
        loginPanel.does(Kind::SendCode);
        scheduler.runDue();
        EXPECT_EQ(loginPanel.view.sendText, u"1 秒后重新获取"_s);
        scheduler.advance(second);
    }
    loginPanel.does(Kind::Close);
    scheduler.advance(10s);
    EXPECT_FALSE(loginPanel.visible);
    item.choose(Action::BrowserLogin);
    scheduler.advance(5s); // no second hand of the old window moves in the new one
    EXPECT_EQ(loginPanel.view.sendText, u"获取验证码"_s);
}

TEST_F(CnLoginTest, WhatWasTypedStaysOnTheOtherWayOfSigningInAndThePasswordOnNoOtherPage) {
    openWindow();
    loginPanel.does(Kind::Password, u"secret"_s);
    loginPanel.does(Kind::Tab, {}, 0);
    loginPanel.does(Kind::Code, u"123"_s);
    loginPanel.does(Kind::Tab, {}, 1);
    EXPECT_EQ(loginPanel.view.password.text, u"secret"_s);
    EXPECT_EQ(loginPanel.view.code.text, u"123"_s);
    loginPanel.does(Kind::Submit);
    loginPanel.does(Kind::LinkA); // nothing turns while a request is in flight
    loginPanel.does(Kind::Tab, {}, 0);
    EXPECT_EQ(loginPanel.view.title, u"Sign In to Korvel"_s);
    EXPECT_EQ(loginPanel.view.tab, 1);
    scheduler.runDue();
    loginPanel.does(Kind::LinkA);
    EXPECT_EQ(loginPanel.view.title, u"Sign Up for Korvel"_s);
    EXPECT_EQ(loginPanel.view.password.text, u""_s);
}

TEST_F(CnLoginTest, AfterASignInNothingSaysThatItWasLost) {
    installAndBind();
    for (const QByteArray &lost : {SIGNED_OUT, QByteArray(R"({"ok":true,"authDead":true,"accountGone":true})")}) {
        agentAnswers(lost);
        openWindow();
        ASSERT_TRUE(health().authDead);
        notices.shown.clear();
        http.answer = nullptr; // the agent has not yet said anything new
        answer(R"({"ok":true,"user":"ann"})");
        loginPanel.does(Kind::Submit);
        scheduler.runDue();
        EXPECT_EQ(item.statusLine(), u"○ Connecting… · ann"_s);
        EXPECT_EQ(pairPanel.view.line, u"Turning on encryption…"_s);
        answerOpen(u"/health"_s, json(SIGNED_OUT)); // as long as the agent has not taken note, which is no news
        EXPECT_EQ(notices.shown.size(), 1u);
        http.open.clear();
    }
}

TEST_F(CnLoginTest, AnAnswerForAClosedWindowIsToldOnlyWhenItSignedIn) {
    openWindow();
    loginPanel.does(Kind::Account, u"ann"_s);
    for (const bool signsIn : {false, true}) {
        answer(signsIn ? R"({"ok":true})" : R"({"ok":false,"error":"No."})");
        scheduler.holdBackground(true);
        loginPanel.does(Kind::Account, u"ann"_s);
        loginPanel.does(Kind::SendCode);
        loginPanel.does(Kind::Submit);
        loginPanel.does(Kind::Close);
        item.choose(Action::BrowserLogin);
        scheduler.holdBackground(false);
        scheduler.runDue();
        EXPECT_EQ(loginPanel.view.error + loginPanel.view.info, u""_s);
        EXPECT_EQ(loginPanel.visible, !signsIn);
        EXPECT_EQ(notices.last() == u"● Signed in as ann", signsIn);
    }
}

TEST_F(CnLoginTest, TheWindowKnowsWhoSignsInAgainUnlessTheNameIsMasked) {
    const struct {
        QByteArray report;
        QString title, account;
    } cases[] = {
        {SIGNED_OUT, u"Sign In to Korvel Again"_s, u"ann"_s},
        {R"({"ok":true,"account":"138****0000","authDead":true})", u"Sign In to Korvel Again"_s, u""_s},
        {R"({"ok":true,"account":"ann","authDead":true,"accountGone":true})", u"Sign In to Korvel"_s, u""_s},
    };
    for (const auto &c : cases) {
        installAndBind();
        agentAnswers(c.report);
        loginPanel.visible = false;
        launch();
        item.choose(Action::BrowserLogin);
        EXPECT_EQ(loginPanel.view.title, c.title) << c.report.constData();
        EXPECT_EQ(loginPanel.view.account.text, c.account);
        EXPECT_EQ(loginPanel.focused, c.account.isEmpty() ? LoginField::Account : LoginField::Password);
    }
    // A second click brings what was typed to the front.
    loginPanel.does(Kind::Account, u"bob"_s);
    item.choose(Action::BrowserLogin);
    EXPECT_EQ(loginPanel.view.account.text, u"bob"_s);
    EXPECT_EQ(loginPanel.presented, 4);
}

/// The sign-in with its real window; the agent refuses every request.
struct CnLoginControlsTest : CnLoginTest {
    CnLoginPanel window;

    CnLoginControlsTest() { shownLogin = &window; }
    void TearDown() override { tray.reset(); }
    QJsonObject request() {
        scheduler.runDue();
        return lastRequest();
    }

    template <class Control>
    static Control *find(const QString &text) {
        for (QWidget *widget : QApplication::allWidgets())
            if (auto *control = qobject_cast<Control *>(widget);
                control && control->isVisible() && control->text() == text)
                return control;
        throw std::runtime_error("no such control: " + text.toStdString());
    }
    static void click(const QString &text) { QTest::mouseClick(find<QAbstractButton>(text), Qt::LeftButton); }
    static void type(const QString &label, const QString &text) {
        QTest::keyClicks(find<QLabel>(label)->buddy(), text);
    }
};

TEST_F(CnLoginControlsTest, EveryControlReachesItsRequest) {
    openWindow();
    click(u"Code"_s);
    type(u"Phone number"_s, u"138"_s);
    type(u"Code"_s, u"123456"_s);
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"login-code","phone":"138","code":"123456"})"));
    click(u"Password"_s);
    type(u"Password"_s, u"old"_s);
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"login","username":"138","password":"old"})"));
    click(u"Forgot password?"_s);
    type(u"New password"_s, u"new"_s);
    click(u"Sign In"_s);
    EXPECT_EQ(request(), object(R"({"op":"reset","phone":"138","code":"123456","password":"new"})"));
    click(u"Back to sign in"_s);
    click(u"Sign up"_s);
    click(u"Get Code"_s);
    EXPECT_EQ(request(), object(R"({"op":"send-code","phone":"138","purpose":"register"})"));
    find<QCheckBox>(u"I agree to the"_s)->click();
    click(u"Sign Up"_s);
    EXPECT_EQ(request(), object(R"({"op":"register","phone":"138","code":"123456","password":"","agree":true})"));
    click(u"Terms of Service"_s);
    click(u"Privacy Policy"_s);
    EXPECT_EQ(desktop.opened, (QStringList{u"https://site.example/cn/terms"_s, u"https://site.example/cn/privacy"_s}));
}

struct CnLoginWindowTest : ::testing::Test {
    QList<LoginInput> inputs;
    CnLoginPanel panel;
    CnLoginForm form;

    CnLoginWindowTest() {
        panel.connect([this](const LoginInput &i) { inputs.append(i); });
    }
    CnLoginWindow &show() {
        panel.present(cnLoginView(form), OpenedBy::User);
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *login = dynamic_cast<CnLoginWindow *>(window); login && login->isVisible())
                return *login;
        throw std::runtime_error("no window");
    }
    LoginInput::Kind last() const { return inputs.isEmpty() ? LoginInput::Kind::Agree : inputs.last().kind; }
};

TEST_F(CnLoginWindowTest, ReturnSubmitsFromEveryFieldAndEscapeAndTheCloseKeyClose) {
    form.page = Page::Register;
    CnLoginWindow &window = show();
    for (QLineEdit *field : window.findChildren<QLineEdit *>()) {
        inputs.clear();
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_EQ(last(), LoginInput::Kind::Submit);
    }
    form.busy = true;
    panel.apply(cnLoginView(form));
    inputs.clear();
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_TRUE(inputs.isEmpty());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(last(), LoginInput::Kind::Close);
    EXPECT_FALSE(window.isVisible());
    CnLoginWindow &again = show();
    finishLayout();
    QTest::keySequence(&again, QKeySequence::Close);
    EXPECT_EQ(last(), LoginInput::Kind::Close);
}

TEST_F(CnLoginWindowTest, WhatIsTypedStaysWhileTheWindowChangesAroundIt) {
    CnLoginWindow &window = show();
    auto fields = window.findChildren<QLineEdit *>();
    panel.focus(LoginField::Account);
    QTest::keyClicks(fields.first(), u"ann"_s);
    EXPECT_EQ(inputs.last().text, u"ann"_s);
    QTest::keyClick(fields.first(), Qt::Key_Left);
    const int height = window.height();
    form.account = u"ann"_s;
    form.error = u"An error of one line."_s;
    panel.apply(cnLoginView(form));
    EXPECT_EQ(fields.first()->cursorPosition(), 2);
    EXPECT_EQ(window.height(), height); // an error makes nothing jump
    form.error = QString(190, u'W');
    panel.apply(cnLoginView(form));
    EXPECT_GT(window.height(), height);
    form.error = u"No.\n"_s.repeated(250);
    panel.apply(cnLoginView(form));
    EXPECT_GT(window.height(), roomForWindows().height() - 50);
    EXPECT_TRUE(roomForWindows().contains(window.frameGeometry()));
}

TEST_F(CnLoginWindowTest, WhoAskedForACodeTypesItNext) {
    form.codeMode = true;
    CnLoginWindow &window = show();
    for (QPushButton *button : window.findChildren<QPushButton *>())
        if (button->text() == u"Get Code")
            button->setFocus();
    form.sending = true;
    panel.apply(cnLoginView(form));
    const auto *field = qobject_cast<QLineEdit *>(window.focusWidget());
    ASSERT_TRUE(field);
    EXPECT_EQ(field->placeholderText(), u"6 digits");
}

TEST_F(CnLoginWindowTest, AClickOnATabLeadsToTheFieldsAndAnArrowKeyStays) {
    CnLoginWindow &window = show();
    const auto tabs = window.findChildren<QRadioButton *>();
    ASSERT_EQ(tabs.size(), 2);
    const auto kinds = [this] {
        QList<LoginInput::Kind> all;
        for (const LoginInput &i : std::exchange(inputs, {}))
            all.append(i.kind);
        return all;
    };
    using Kind = LoginInput::Kind;
    for (const auto &expected : {QList<Kind>{Kind::Tab, Kind::TabClick}, {Kind::TabClick}}) {
        QTest::mouseClick(tabs.first(), Qt::LeftButton);
        EXPECT_EQ(kinds(), expected);
    }
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    tabs.first()->setFocus();
    QTest::keyClick(tabs.first(), Qt::Key_Right);
    EXPECT_EQ(kinds(), QList<Kind>{Kind::Tab});
    form.codeMode = false;
    panel.apply(cnLoginView(form));
    EXPECT_EQ(window.focusWidget(), tabs.last());
}

} // namespace
} // namespace korvel::test
