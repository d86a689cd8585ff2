#include "e2ee/pair_view.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/report.h"

#include <QStringList>

namespace korvel {

namespace {

struct Sentences {
    QString line;
    QString hint = {};
    QString error = {};
    bool relogin = false;
};

Sentences pendingSentences(const QJsonObject &e2) {
    if (e2PairDone(e2))
        return {.line = L(u"已配对，正在开启加密…", u"Paired. Turning on encryption…")};
    if (!e2PairShow(e2))
        return {.line = L(u"正在获取配对码…", u"Getting a pairing code…")};
    return {.line = L(u"请在手机上输入这个配对码", u"Enter this code on your phone"),
            .hint = L(u"手机上的 Korvel 将自动弹出输入框", u"Korvel on your phone will prompt you for it."),
            .error = e2PairWrong(e2) ? L(u"配对码错误，已刷新", u"Incorrect code. The code has been refreshed.")
                                     : QString()};
}

Sentences otherSentences(const QJsonObject &e2) {
    const QString line = e2StatusText(e2).value_or(L(u"正在开启加密…", u"Turning on encryption…"));
    const QString trouble = e2.value(u"trouble").toString();
    return {.line = line, .hint = trouble == line ? QString() : trouble};
}

Sentences sentencesOf(const QJsonObject &e2, const PairState &pairing, const PairContext &context) {
    const QString state = e2State(e2);
    if (!pairing.pairPreview && !context.bound)
        return {.line = L(u"未登录", u"Not signed in"), .relogin = true};
    if (!pairing.pairPreview && context.authDead && state != u"pair-failed")
        return {.line = context.accountGone ? L(u"账号已注销，请使用其他账号登录",
                                                u"This account was deleted. Sign in with a different account.")
                                            : L(u"登录已失效，请重新登录", u"You've been signed out. Sign in again."),
                .relogin = true};
    if (state == u"pending")
        return pendingSentences(e2);
    if (state == u"waiting")
        return {.line = L(u"请先在手机上登录 Korvel", u"Sign in to Korvel on your phone first."),
                .hint = L(u"登录后，配对码将显示在这里", u"The pairing code will appear here after you sign in.")};
    if (state == u"expired")
        return {.line = L(u"配对码已过期，正在刷新…", u"The pairing code expired. Refreshing…")};
    if (isOneOf(state, {u"approved", u"pair-failed", u"rejected", u"revoked", u"suspended"}))
        return {.line = e2StatusText(e2).value_or(QString()), .relogin = true};
    return otherSentences(e2);
}

PairView successView() {
    return {.title = L(u"配对成功", u"Paired"),
            .code = QStringLiteral("🔒"),
            .codeName = {},
            .line = L(u"已加密，开始同步", u"Encrypted. Syncing now."),
            .hint = {},
            .error = {},
            .button = L(u"关闭", u"Close")};
}

/// Sets the code label. Returns true if it shows a code.
bool showCode(PairView &view, const QJsonObject &e2, PairState &pairing) {
    if (e2PairDone(e2)) {
        view.code = QStringLiteral("✓");
        pairing.pairSawCode = true;
        return false;
    }
    if (const auto code = e2PairShow(e2); code && e2State(e2) == u"pending") {
        view.code = shownName(*code);
        view.codeName = spelledOut(view.code);
        pairing.pairSawCode = true;
        return true;
    }
    view.code = QStringLiteral("··· ···");
    view.codeMuted = true;
    return false;
}

QString buttonTitle(const PairState &pairing) {
    if (pairing.pairLogout)
        return L(u"退出账号…", u"Sign Out…");
    return pairing.pairRelogin ? L(u"重新登录…", u"Sign In Again…") : L(u"关闭", u"Close");
}

PairUpdate succeed(PairState &pairing) {
    if (!pairing.pairSawCode)
        return {.step = PairUpdate::Step::Vanish, .view = {}};
    if (pairing.pairClosing)
        return {.step = PairUpdate::Step::Keep, .view = {}};
    pairing.pairClosing = true;
    pairing.pairRelogin = pairing.pairLogout = false;
    return {.step = PairUpdate::Step::Celebrate, .view = successView()};
}

} // namespace

PairUpdate pairView(const QJsonObject &e2, PairState &pairing, const PairContext &context) {
    const QString state = e2State(e2);
    if (state == u"active")
        return succeed(pairing);
    pairing.pairClosing = false;
    PairView view;
    view.title = L(u"配对这台 Mac", u"Pair This Mac");
    const bool showsCode = showCode(view, e2, pairing);
    const Sentences sentences = sentencesOf(e2, pairing, context);
    view.line = multiLine(sentences.line);
    view.hint = multiLine(sentences.hint);
    view.error = sentences.error;
    pairing.pairRelogin = sentences.relogin;
    // An approved Mac without keys gets them by signing out and in. An expired sign-in only has to be renewed.
    pairing.pairLogout = sentences.relogin && state == u"approved" && !context.authDead && !pairing.pairPreview;
    view.button = buttonTitle(pairing);
    view.refreshVisible = showsCode && !sentences.relogin;
    view.refreshEnabled = !pairing.pairRenewing;
    return {.step = PairUpdate::Step::Show, .view = view};
}

QString spelledOut(const QString &code) {
    QStringList characters;
    for (const QChar c : code)
        if (!c.isSpace())
            characters.append(c);
    return characters.join(u' ');
}

} // namespace korvel
