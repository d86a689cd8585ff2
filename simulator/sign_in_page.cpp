#include "simulator/sign_in_page.h"

#include "simulator/wording.h"

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
p[role=alert] { margin: 0 0 1rem; color: var(--red); }
label { display: block; margin: 0 0 .9rem; font-weight: 600; }
input { display: block; width: 100%; margin-top: .3rem; padding: .55rem .7rem; border: 1px solid var(--line);
        border-radius: 8px; font: inherit; font-weight: 400; }
.buttons { display: flex; flex-direction: row-reverse; gap: .6rem; margin-top: 1.4rem; }
button { flex: 1; padding: .6rem; border: 1px solid var(--line); border-radius: 8px; background: none; font: inherit;
         cursor: pointer; }
button[value=sign-in] { border-color: var(--blue); background: var(--blue); color: #fff; font-weight: 600; }
)";

HttpAnswer document(bool chinese, const QString &title, const QString &content, int status = 200) {
    const QString html = u"<!DOCTYPE html>\n<html lang=\"%1\">\n<meta charset=\"utf-8\">\n"
                         "<meta name=\"viewport\" content=\"width=device-width\">\n<title>%2</title>\n"
                         "<style>%3</style>\n<main>\n<h1>%2</h1>\n%4</main>\n</html>\n"_s.arg(
                             chinese ? u"zh-CN"_s : u"en"_s, title, QString::fromLatin1(STYLE), content);
    return {status, "text/html; charset=utf-8", html.toUtf8()};
}

QString field(const QString &label, const QString &attributes) {
    return u"<label>%1<input required autocapitalize=\"none\" %2></label>\n"_s.arg(label, attributes);
}

} // namespace

HttpAnswer htmlOf(const SignInPage &page) {
    const auto say = [&page](QStringView zh, QStringView en) { return Wording{zh, en}.in(page.chinese); };
    const QString device = page.device.toHtmlEscaped();
    QString form = u"<p id=\"device\">"_s + say(u"登录后，手机即可连接“", u"Your phone will be able to use “") +
                   device + say(u"”。", u"”.") + u"</p>\n<form method=\"post\">\n"_s;
    if (!page.error.isEmpty())
        form += u"<p id=\"error\" role=\"alert\">%1</p>\n"_s.arg(page.error.toHtmlEscaped());
    const QString userFocus = page.error.isEmpty() ? u" autofocus"_s : QString();
    const QString passwordFocus = page.error.isEmpty() ? QString() : u" autofocus"_s;
    form += field(say(u"手机号或邮箱", u"Phone number or email"),
                  u"id=\"username\" name=\"username\" autocomplete=\"username\" value=\""_s +
                      page.userName.toHtmlEscaped() + u'"' + userFocus);
    form += field(say(u"密码", u"Password"),
                  u"id=\"password\" name=\"password\" type=\"password\" autocomplete=\"current-password\""_s +
                      passwordFocus);
    form += u"<div class=\"buttons\">\n<button id=\"sign-in\" name=\"action\" value=\"sign-in\">"_s +
            say(u"登录", u"Sign In") +
            u"</button>\n<button id=\"cancel\" name=\"action\" value=\"cancel\" formnovalidate>"_s +
            say(u"取消", u"Cancel") + u"</button>\n</div>\n</form>\n"_s;
    return document(page.chinese, say(u"登录 Korvel", u"Sign In to Korvel"), form);
}

HttpAnswer closingPage(SignInEnd end, bool chinese, const QString &device) {
    struct Text {
        Wording title;
        Wording text;
    };
    static constexpr Text SIGNED_IN{
        {u"已登录", u"Signed In"},
        {u"可以关闭此页面，回到 Korvel。", u"You can close this page and go back to Korvel."}};
    static constexpr Text CANCELLED{{u"已取消", u"Cancelled"},
                                    {u"没有登录，可以关闭此页面。", u"Nobody was signed in. You can close this page."}};
    static constexpr Text INVALID{{u"链接已失效", u"This Link No Longer Works"},
                                  {u"请在 Mac 上重新开始登录。", u"Start signing in again on your Mac."}};
    const Text &shown = end == SignInEnd::SignedIn ? SIGNED_IN : end == SignInEnd::Cancelled ? CANCELLED : INVALID;
    const QString name = device.isEmpty() ? QString() : u"<p id=\"device\">%1</p>\n"_s.arg(device.toHtmlEscaped());
    return document(chinese, shown.title.in(chinese),
                    name + u"<p id=\"closing\">%1</p>\n"_s.arg(shown.text.in(chinese)),
                    end == SignInEnd::Invalid ? 404 : 200);
}

} // namespace korvel::sim
