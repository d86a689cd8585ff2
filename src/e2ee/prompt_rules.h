#pragma once

#include "app/model/tray_state.h"

#include <QJsonObject>
#include <QString>

namespace korvel {

/// The prompt that a new report raises.
struct E2Prompt {
    enum class Kind { None, PairWindow, Approval, Alarm };
    Kind kind = Kind::None;
    QJsonObject subject;         ///< The approval request or alarm.
    bool announceActive = false; ///< Encryption became active while the pairing window is hidden.
    bool operator==(const E2Prompt &) const = default;
};

struct PromptContext {
    bool bound = false;
    bool authDead = false;
    bool pairWindowVisible = false;
    bool e2Modal = false; ///< Any alert is open: no prompt is shown beside it, nor marked as shown.
};

/// Identity of an approval request. A new attempt counts as a new request.
QString pendKey(const QJsonObject &request);

/// Chooses the one prompt, if any, that the report in `e2ee` raises, and marks it as shown.
E2Prompt takePrompt(E2State &e2ee, PairState &pairing, const PromptContext &context);

} // namespace korvel
