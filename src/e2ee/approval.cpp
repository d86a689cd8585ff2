#include "e2ee/approval.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/e2ee_views.h"
#include "e2ee/pair_code.h"
#include "e2ee/report.h"
#include "e2ee/requests.h"

namespace korvel {

namespace {

enum Button { Allow, Deny, Later };
constexpr milliseconds ASK_AGAIN_DELAY = 300ms;

QString nameOf(const QJsonObject &request) { return deviceName(request, L(u"新设备", u"New device")); }

QString pendingIdOf(const QJsonObject &request) { return request.value(u"pendingId").toString(); }

QString instructions() {
    return L(
        u"请输入新设备上显示的配对码。\n如果你刚才没有在新设备上登录，请勿输入，并立即修改密码。",
        u"Enter the pairing code shown on the new device.\nIf you didn't just sign in on a new device, don't enter "
        u"it, and change your password immediately.");
}

bool canBeRetried(const QString &code) { return code == u"wrong-code" || code == u"bad-code" || code == u"answered"; }

} // namespace

AlertView approveAlert(const QJsonObject &request, const QString &error) {
    return {.title = L(u"新设备请求加入：", u"New device: ") + deviceName(request, QStringLiteral("?")) +
                     QStringLiteral(" · ") + e2Platform(request.value(u"platform")),
            .fromOutside = multiLine(error),
            .text = instructions(),
            .warning = !error.isEmpty(),
            .buttons = {L(u"允许", u"Allow"), L(u"拒绝", u"Deny"), L(u"稍后", u"Later")},
            .escape = Later,
            .fields = {{.kind = AlertField::Kind::Code}}};
}

Approval::Approval(E2State &e, AgentApi &a, Alerts &al, Scheduler &s, Notices &no, Poller &po)
    : e2ee(e), api(a), alerts(al), scheduler(s), notices(no), poller(po) {}

void Approval::showApprove(const QJsonObject &request, OpenedBy by, const QString &error) {
    if (request.value(u"pendingId").isString())
        alerts.open(approveAlert(request, error), by,
                    alive.guard([this, request](const AlertAnswer &answer) { answered(request, answer); }));
}

void Approval::answered(const QJsonObject &request, const AlertAnswer &answer) {
    if (answer.button == Deny)
        deny(request);
    else if (answer.button == Allow)
        allow(request, codeDigits(answer.texts.value(0)));
}

void Approval::deny(const QJsonObject &request) {
    e2Post(api, rejectDeviceRequest(pendingIdOf(request)),
           alive.guard(
               [this, name = nameOf(request)](const Result<QJsonObject> &) { notices.showHUD(deniedNotice(name)); }));
}

void Approval::allow(const QJsonObject &request, const QString &code) {
    if (code.size() != 6)
        return showApprove(request, OpenedBy::User, L(u"配对码为 6 位数字", u"The pairing code must be 6 digits."));
    notices.showHUD(verifyingNotice());
    e2ee.e2Answering.insert(pendingIdOf(request));
    e2Post(api, pairDeviceRequest(pendingIdOf(request), code),
           alive.guard([this, request](const Result<QJsonObject> &reply) { verdict(request, reply); }));
}

void Approval::verdict(const QJsonObject &request, const Result<QJsonObject> &reply) {
    e2ee.e2Answering.remove(pendingIdOf(request));
    notices.hideHUD();
    const QString code = reply ? reply->value(u"code").toString() : QString();
    if (agentOk(reply))
        notices.showHUD(allowedNotice(nameOf(request)));
    else if (canBeRetried(code))
        askAgainSoon(request, errText(reply));
    else
        notices.showHUD(notAdmittedNotice(reply));
    poller.poll();
}

void Approval::askAgainSoon(const QJsonObject &request, const QString &error) {
    e2ee.e2Retries.append({.request = request, .error = error, .due = scheduler.now() + ASK_AGAIN_DELAY});
    again = scheduler.after(ASK_AGAIN_DELAY, [this] { askAgain(); });
}

void Approval::askAgain() {
    QList<E2Retry> &retries = e2ee.e2Retries;
    if (alerts.isOpen() || retries.isEmpty() || retries.first().due > scheduler.now())
        return;
    const E2Retry retry = retries.takeFirst();
    showApprove(retry.request, OpenedBy::Program, retry.error);
}

} // namespace korvel
