#include "e2ee/prompts.h"

#include "app/wording.h"

namespace korvel {

void Prompts::e2Prompt() {
    hooks.updatePairWindow();
    const PairContext context = hooks.context();
    const E2Prompt prompt = takePrompt(
        e2ee, pairing,
        {.bound = context.bound, .authDead = context.authDead, .pairWindowVisible = hooks.pairWindowVisible()});
    if (prompt.announceActive)
        hooks.showHUD({.text = L(u"🔒 已加密，开始同步", u"🔒 Encrypted. Syncing now."), .secs = Seconds(3)});
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
