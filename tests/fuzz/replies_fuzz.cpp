// Replies of the agent's command and loopback interface, and of the account server, up to what windows show of them.
#include "account/account_notices.h"
#include "account/browser_login.h"
#include "account/cn_login_view.h"
#include "account/login_dialog.h"
#include "account/server_api.h"
#include "app/model/wording.h"
#include "base/plain_text.h"
#include "fuzz/json_mutator.h"
#include "platform/net/http_messages.h"
#include "service/agent_api.h"
#include "service/agent_command.h"
#include "update/update_notices.h"

#include <QRegularExpression>
#include <QUrl>

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

bool isShownText(QString text) { return text.size() <= MAX_TEXT && fuzz::isDrawable(keepOrder(text).remove(u'\n')); }

/// As the window of notices shows it.
void checkNotice(const Notice &notice) { require(isShownText(singleLine(notice.text)), "a notice has a plain text"); }

void checkForm(const CnLoginForm &form, const Result<QJsonObject> &reply) {
    const CnLoginView view = cnLoginView(form);
    require(form.countdown >= 0 && form.countdown <= 86400, "the countdown lasts a day at most");
    require(isShownText(view.error), "the error is a plain text");
    require(agentOk(reply) || !form.error.isEmpty(), "a failure has a sentence");
    require(form.info.isEmpty() || form.error.isEmpty(), "one of the two lines");
}

void checkSignInWindow(const Result<QJsonObject> &reply, fuzz::Input &input) {
    CnLoginForm form = openCnLoginForm(input.flag(), u"a@b.example"_s);
    setPage(form, static_cast<Page>(input.mode % 3));
    setCodeMode(form, input.flag());
    require(sendCode(form).has_value(), "a new form may request a code");
    applyCodeResponse(form, reply);
    checkForm(form, reply);
    require(submit(form).has_value(), "a new form may be submitted");
    const SubmitOutcome outcome = applySubmitResponse(form, reply);
    require(outcome.user.has_value() == agentOk(reply) && outcome.user.has_value() == form.busy, "busy after success");
    if (outcome.user)
        return checkNotice(signedInNotice(*outcome.user));
    checkForm(form, reply);
    require(outcome.focus && showsField(form, *outcome.focus), "the focus is in a visible field");
    const CnLoginForm before = form;
    applySubmitResponse(form, reply);
    require(form == before, "the same reply changes nothing");
}

/// The requests that repeat what a reply says.
void checkRequest(const QJsonObject &reply) {
    const QString id = reply[u"id"].toString();
    const AgentRequest status = authStatusRequest(id);
    const HttpRequest request = buildAgentRequest(u"http://127.0.0.1:8790"_s, reply[u"agentToken"].toString(), status);
    const QUrl url(request.url, QUrl::StrictMode);
    require(url.isValid() && QUrl::fromPercentEncoding(url.query(QUrl::FullyEncoded).toLatin1().mid(3)) ==
                                 QString::fromUtf8(id.toUtf8()),
            "the identifier arrives as it is");
    const auto bytes = serializeRequest(request, "127.0.0.1:8790", status.path.toLatin1());
    require(!bytes || (bytes->count("\r\n") == 4 + request.headers.size() && bytes->endsWith("\r\n\r\n")),
            "a token adds one header");
}

void checkServer(const QByteArray &body, unsigned mode) {
    const auto signIn = parseLogin(HttpReply{200, body});
    require(!signIn || !signIn->agentToken.isEmpty(), "a credential is not empty");
    if (!signIn)
        require(isShownText(loginAlert({.error = signIn.error().detail}, true, u"a:443"_s).fromOutside),
                "an error's text");
    checkNotice(downloadRefusedNotice(static_cast<int>(mode * 7), body, {}));
}

/// The last line that begins with a brace after blanks.
QByteArray lastObject(const QByteArray &output) {
    static const QRegularExpression BEGINNING(u"^[ \t]*\\{"_s);
    const QStringList lines = QString::fromLatin1(output).split(u'\n').filter(BEGINNING);
    return lines.isEmpty() ? QByteArray() : lines.last().toLatin1();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    ZH = input.flag();
    const Result<QJsonObject> reply = parseAgentJson(input.bytes);
    const bool isAscii = QtPrivate::isAscii(QLatin1StringView(input.bytes));
    require(!isAscii || !reply || reply.value() == QJsonDocument::fromJson(lastObject(input.bytes)).object(),
            "the last object counts");
    checkSignInWindow(reply, input);
    checkNotice(signInFailedNotice(errText(reply)));
    const auto response = parseAgentReply({200, input.bytes});
    if (response)
        checkRequest(response.value());
    checkServer(input.bytes, input.mode);
    return 0;
}
