#include "e2ee/prompts.h"

#include "e2ee/e2ee_notices.h"

namespace korvel {

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
