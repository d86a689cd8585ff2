#include "e2ee/prompts.h"

#include "e2ee/e2ee_views.h"
#include "e2ee/report.h"

namespace korvel {

namespace {

bool wantsApproval(const E2State &e2ee, const QJsonObject &request) {
    return request.value(u"ready").toBool() && !request.value(u"busy").toBool() &&
           !e2ee.e2Answering.contains(request.value(u"pendingId").toString()) &&
           !e2ee.e2ShownPending.contains(pendKey(request));
}

bool wantsPairWindow(const E2State &e2ee, const PairState &pairing, const PromptContext &context) {
    const QString state = e2State(e2ee.e2);
    return !pairing.pairAutoShown && e2NeedsPairing(e2ee.e2, context.bound, context.authDead) && !isIdle(state);
}

} // namespace

QString pendKey(const QJsonObject &request) {
    return request.value(u"pendingId").toString() + u'#' + QString::number(request.value(u"attempt").toInteger());
}

E2Prompt takePrompt(E2State &e2ee, PairState &pairing, const PromptContext &context) {
    E2Prompt prompt;
    const QString state = e2State(e2ee.e2);
    prompt.announceActive = state == u"active" && !context.pairWindowVisible &&
                            (e2ee.e2LastState == u"pending" || e2ee.e2LastState == u"approved");
    e2ee.e2LastState = state;
    if (context.e2Modal)
        return prompt;
    if (wantsPairWindow(e2ee, pairing, context)) {
        pairing.pairAutoShown = true;
        prompt.kind = E2Prompt::Kind::PairWindow;
        return prompt;
    }
    for (const QJsonObject &request : e2Pending(e2ee.e2)) {
        if (!wantsApproval(e2ee, request))
            continue;
        e2ee.e2ShownPending.insert(pendKey(request));
        prompt.kind = E2Prompt::Kind::Approval;
        prompt.subject = request;
        return prompt;
    }
    for (const QJsonObject &alarm : e2Alarms(e2ee.e2)) {
        const QString id = alarm.value(u"id").toString();
        if (e2ee.e2ShownAlarms.contains(id))
            continue;
        e2ee.e2ShownAlarms.insert(id);
        prompt.kind = E2Prompt::Kind::Alarm;
        prompt.subject = alarm;
        return prompt;
    }
    return prompt;
}

void Prompts::e2Prompt(const PairContext &context) {
    pairing.updatePairWindow();
    approval.askAgain();
    const E2Prompt prompt = takePrompt(e2ee, pairState,
                                       {.bound = context.bound,
                                        .authDead = context.authDead,
                                        .pairWindowVisible = pairing.isVisible(),
                                        .e2Modal = alerts.isOpen()});
    if (prompt.announceActive)
        notices.showHUD(encryptedNotice());
    switch (prompt.kind) {
    case E2Prompt::Kind::None:
        return;
    case E2Prompt::Kind::PairWindow:
        return pairing.showPairWindow(OpenedBy::Program);
    case E2Prompt::Kind::Approval:
        return approval.showApprove(prompt.subject, OpenedBy::Program);
    case E2Prompt::Kind::Alarm:
        return alarms.showAlarm(prompt.subject, OpenedBy::Program);
    }
}

} // namespace korvel
