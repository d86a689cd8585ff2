#include "e2ee/alarms.h"

#include "app/model/wording.h"
#include "base/plain_text.h"
#include "e2ee/e2ee_views.h"
#include "e2ee/requests.h"

namespace korvel {

namespace {

enum Button { ItWasMe, ItWasNotMe };

bool isReset(const QJsonObject &alarm) { return alarm.value(u"kind").toString() == u"reset"; }

} // namespace

AlertView alarmAlert(const QJsonObject &alarm) {
    if (!isReset(alarm))
        return {.title = L(u"安全提醒", u"Security Alert"),
                .fromOutside = multiLine(alarm.value(u"text").toString()),
                .warning = true,
                .buttons = {L(u"好", u"OK")},
                .escape = 0};
    return {.title = L(u"加密已重置", u"Encryption Was Reset"),
            .text =
                L(u"如果是你本人的操作，请点击「是我，重新加入」，然后在手机上输入这台 Mac "
                  u"的配对码。\n如果不是，请勿批准任何新设备，并立即修改密码。",
                  u"If you did this, click It Was Me, Rejoin, then enter this Mac's pairing code on your phone.\nIf "
                  u"not, don't approve any new device, and change your password immediately."),
            .warning = true,
            .buttons = {L(u"是我，重新加入", u"It Was Me, Rejoin"), L(u"不是我", u"It Wasn't Me")},
            .escape = ItWasNotMe,
            .main = ItWasNotMe};
}

Alarms::Alarms(AgentApi &a, Alerts &al, Notices &no, Poller &po, Pairing &pa)
    : api(a), alerts(al), notices(no), poller(po), pairing(pa) {}

void Alarms::showAlarm(const QJsonObject &alarm, OpenedBy by) {
    alerts.open(alarmAlert(alarm), by,
                alive.guard([this, alarm](const AlertAnswer &answer) { answered(alarm, answer); }));
}

void Alarms::answered(const QJsonObject &alarm, const AlertAnswer &answer) {
    if (isReset(alarm)) {
        if (answer.button == ItWasMe)
            return rejoin();
        // Not dismissed at the agent: the alarm stays until the user rejoins.
        return notices.showHUD(strangersResetNotice());
    }
    if (const QJsonValue id = alarm.value(u"id"); id.isString())
        e2Post(api, dismissAlarmRequest(id.toString()), [](const Result<QJsonObject> &) {});
}

void Alarms::rejoin() {
    e2Post(api, acceptResetRequest(), alive.guard([this](const Result<QJsonObject> &reply) {
        if (agentOk(reply)) // the window has to see the report after the reset
            return poller.poll([this] { pairing.pairAfterLogin(); });
        notices.showHUD(notRejoinedNotice(reply));
    }));
}

} // namespace korvel
