#include "e2ee/prompts.h"

#include "e2ee/e2ee_notices.h"

namespace korvel {

void Prompts::e2Prompt(const PairContext &context) {
    hooks.updatePairWindow();
    hooks.askAgain();
    const E2Prompt prompt = takePrompt(e2ee, pairing,
                                       {.bound = context.bound,
                                        .authDead = context.authDead,
                                        .pairWindowVisible = hooks.pairWindowVisible(),
                                        .e2Modal = hooks.alertOpen()});
    if (prompt.announceActive)
        hooks.showHUD(encryptedNotice());
    switch (prompt.kind) {
    case E2Prompt::Kind::None:
        return;
    case E2Prompt::Kind::PairWindow:
        return hooks.showPairWindow();
    case E2Prompt::Kind::Approval:
        return hooks.showApprove(prompt.subject);
    case E2Prompt::Kind::Alarm:
        return hooks.showAlarm(prompt.subject);
    }
}

} // namespace korvel
