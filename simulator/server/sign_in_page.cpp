#include "simulator/server/sign_in_page.h"

#include "app/model/wording.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const char STYLE[] = R"(
:root { color-scheme: light dark; --line: #c8c8cd; --soft: #6e6e73; --blue: #0a64d8; --red: #c4261d; --back: #f5f5f7;
        --card: #fff; }
@media (prefers-color-scheme: dark) { :root { --line: #55555a; --soft: #a1a1a6; --blue: #2f7de0; --red: #ff6961;
        --back: #1c1c1e; --card: #2c2c2e; } }
* { box-sizing: border-box; }
body { margin: 0; min-height: 100vh; display: grid; place-items: center; background: var(--back);
       font: 15px/1.45 system-ui, "DejaVu Sans", sans-serif; }
main { width: min(24rem, 92vw); padding: 2rem; border-radius: 14px; background: var(--card);
       box-shadow: 0 1px 3px #0003, 0 8px 30px #0002; }
h1 { margin: 0 0 .4rem; font-size: 1.4rem; }
p { margin: 0 0 1.2rem; color: var(--soft); overflow-wrap: anywhere; }
p[role=alert] { color: var(--red); }
label { display: block; margin: 0 0 .9rem; font-weight: 600; }
input { display: block; width: 100%; margin-top: .3rem; padding: .55rem .7rem; border: 1px solid var(--line);
        border-radius: 8px; font: inherit; font-weight: 400; }
.buttons { display: flex; flex-direction: row-reverse; gap: .6rem; margin-top: 1.4rem; }
button { flex: 1; padding: .6rem; border: 1px solid var(--line); border-radius: 8px; background: none; font: inherit;
         cursor: pointer; }
button[value=sign-in] { border-color: var(--blue); background: var(--blue); color: #fff; font-weight: 600; }
)";

HttpResponse document(const QString &title, const QString &content, int status = 200) {
    const QString html = u"<!DOCTYPE html>\n<html lang=\"%1\">\n<meta charset=\"utf-8\">\n"
                         "<meta name=\"viewport\" content=\"width=device-width\">\n<title>%2</title>\n"
                         "<style>%3</style>\n<main>\n<h1>%2</h1>\n%4</main>\n</html>\n"_s.arg(
                             L(u"zh-CN", u"en"), title, QString::fromLatin1(STYLE), content);
    return {status, "text/html; charset=utf-8", html.toUtf8()};
}

QString paragraph(const QString &attributes, const QString &text) {
    return text.isEmpty() ? QString() : u"<p %1>%2</p>\n"_s.arg(attributes, text.toHtmlEscaped());
}

QString field(const QString &label, const QString &name, const QString &attributes) {
    return u"<label>%1<input required autocapitalize=\"none\" id=\"%2\" name=\"%2\" %3></label>\n"_s.arg(label, name,
                                                                                                         attributes);
}

QString button(const QString &action, const QString &label, const QString &attributes = {}) {
    return u"<button id=\"%1\" name=\"action\" value=\"%1\" %3>%2</button>\n"_s.arg(action, label, attributes);
}

} // namespace

HttpResponse signInPage(const QString &device, const QString &userName, const QString &error) {
    const QString focus = u" autofocus"_s, nowhere;
    return document(
        L(u"登录 Korvel", u"Sign In to Korvel"),
        paragraph(u"id=\"device\""_s,
                  L(u"登录后，手机即可连接“%1”。", u"Your phone will be able to use “%1”.").arg(device)) +
            u"<form method=\"post\">\n"_s + paragraph(u"id=\"error\" role=\"alert\""_s, error) +
            field(L(u"手机号或邮箱", u"Phone number or email"), u"username"_s,
                  u"autocomplete=\"username\" value=\"%1\""_s.arg(userName.toHtmlEscaped()) +
                      (error.isEmpty() ? focus : nowhere)) +
            field(L(u"密码", u"Password"), u"password"_s,
                  u"type=\"password\" autocomplete=\"current-password\""_s + (error.isEmpty() ? nowhere : focus)) +
            u"<div class=\"buttons\">\n"_s + button(u"sign-in"_s, L(u"登录", u"Sign In")) +
            button(u"cancel"_s, L(u"取消", u"Cancel"), u"formnovalidate"_s) + u"</div>\n</form>\n"_s);
}

HttpResponse closingPage(const QString &end, const QString &device) {
    const QString name = paragraph(u"id=\"device\""_s, device), closing = u"id=\"closing\""_s;
    if (end == "done"_L1)
        return document(L(u"已登录", u"Signed In"),
                        name + paragraph(closing, L(u"可以关闭此页面，回到 Korvel。",
                                                    u"You can close this page and go back to Korvel.")));
    if (end == "cancelled"_L1)
        return document(L(u"已取消", u"Cancelled"),
                        name + paragraph(closing, L(u"没有登录，可以关闭此页面。",
                                                    u"Nobody was signed in. You can close this page.")));
    return document(L(u"链接已失效", u"This Link No Longer Works"),
                    paragraph(closing, L(u"请在 Mac 上重新开始登录。", u"Start signing in again on your Mac.")), 404);
}

} // namespace korvel::sim
