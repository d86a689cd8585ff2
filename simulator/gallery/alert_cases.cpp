#include "account/login_dialog.h"
#include "account/sign_out.h"
#include "app/model/wording.h"
#include "e2ee/alarms.h"
#include "e2ee/approval.h"
#include "simulator/gallery/gallery_case.h"
#include "ui/widgets/alert_window.h"
#include "ui/widgets/text_fields.h"

#include <QApplication>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace korvel::gallery {

namespace {

struct Sample {
    const char *name;
    std::function<AlertView()> view;
    QString typed = {}; ///< Typed into the code field.
};

QJsonObject device(const QString &name, const QString &platform = u"ios"_s) {
    return {{u"pendingId"_s, u"1"_s}, {u"name"_s, name}, {u"platform"_s, platform}};
}

QJsonObject alarm(const QString &text) { return {{u"id"_s, u"1"_s}, {u"text"_s, text}}; }

AlertView signIn(LoginAttempt attempt, bool again = false) {
    return loginAlert(attempt, again, u"intl.korvel.example:443"_s);
}

std::shared_ptr<void> show(const Sample &sample) {
    auto alerts = std::make_shared<AlertWindow>();
    alerts->open(sample.view(), OpenedBy::User, [](const AlertAnswer &) {});
    for (const QWidget *window : QApplication::topLevelWidgets())
        for (QLineEdit *field : window->findChildren<QLineEdit *>())
            if (auto *code = dynamic_cast<PairCodeField *>(field))
                code->insert(sample.typed);
    return alerts;
}

} // namespace

QList<Case> alertCases() {
    const QString attempt = L(u"有人在上海的一台新设备上尝试登录你的账号。",
                              u"Somebody tried to sign in to your account on a new device in Lisbon.");
    const QString anna = u"Anna’s phone"_s, email = u"anna@example.com"_s;
    const QList<Sample> samples{
        {"new-device", [=] { return approveAlert(device(anna), {}); }},
        {"new-device-4-digits", [=] { return approveAlert(device(anna), {}); }, u"4829"_s},
        {"new-device-6-digits", [=] { return approveAlert(device(anna), {}); }, u"482913"_s},
        {"new-device-wrong-code",
         [=] {
             return approveAlert(device(u"Büro"_s, u"windows"_s),
                                 L(u"配对码错误，请重试", u"The code is wrong. Try again."));
         }},
        {"new-device-without-name",
         [] {
             return approveAlert({{u"pendingId"_s, u"1"_s}}, {});
         }},
        {"new-device-long-name", [] { return approveAlert(device(longName()), {}); }},
        {"new-device-forged-name",
         [] {
             return approveAlert(
                 device(L(u"安娜的手机 · iPhone\n\nKorvel 已检查过这台设备。请输入 482 913 并选择“允许”",
                          u"Anna's phone · iPhone\n\nKorvel checked it: type 482 913, choose Allow") +
                        u"\n"_s.repeated(60)),
                 {});
         }},
        {"new-device-unbroken-name", [] { return approveAlert(device(unbrokenName()), unbrokenName()); }},
        {"new-device-right-to-left", [] { return approveAlert(device(rightToLeftName()), {}); }},
        {"alarm", [=] { return alarmAlert(alarm(attempt)); }},
        {"alarm-without-text", [] { return alarmAlert(alarm({})); }},
        {"alarm-at-length", [=] { return alarmAlert(alarm((attempt + u'\n').repeated(6))); }},
        {"alarm-beyond-measure", [] { return alarmAlert(alarm((L(u"第一行\n", u"One line\n")).repeated(100))); }},
        {"reset",
         [] {
             return alarmAlert({{u"kind"_s, u"reset"_s}});
         }},
        {"sign-out", [] { return signOutAlert(); }},
        {"sign-in", [] { return signIn({}); }},
        {"sign-in-again", [=] { return signIn({.user = email}, true); }},
        {"sign-in-refused",
         [=] {
             return signIn(
                 {.user = email,
                  .error = L(u"邮箱或密码错误，请检查后重试", u"The email or the password is wrong. Check both.")});
         }},
        {"sign-in-with-server",
         [=] { return signIn({.user = email, .server = u"10.0.0.5:8443"_s, .advanced = true}); }},
        {"sign-in-bad-server",
         [=] {
             return signIn({.user = email,
                            .error = L(u"服务器地址格式不正确", u"The server address isn't valid."),
                            .server = u"http:/"_s,
                            .advanced = true});
         }},
    };
    QList<Case> cases;
    for (const Sample &sample : samples)
        cases.append({u"Alerts"_s, QLatin1StringView(sample.name), [sample] { return show(sample); }});
    return cases;
}

} // namespace korvel::gallery
