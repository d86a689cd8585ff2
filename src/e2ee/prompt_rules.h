#pragma once

#include "app/model/tray_state.h"

#include <QJsonObject>
#include <QString>

namespace korvel {

/// What a new report is to put in front of the user.
struct E2Prompt {
    enum class Kind { None, PairWindow, Approval, Alarm };
    Kind kind = Kind::None;
    QJsonObject subject;         ///< The approval request or alarm.
    bool announceActive = false; ///< Encryption came on while no window tells it.
    bool operator==(const E2Prompt &) const = default;
};

struct PromptContext {
    bool bound = false;
    bool authDead = false;
    bool pairWindowVisible = false;
    bool e2Modal = false; ///< An alert is open, whatever it is about: nothing is shown beside it, nor marked as shown.
};

/// Identity of an approval request: a re-issued one counts as new.
QString pendKey(const QJsonObject &request);

/// Chooses the one prompt, if any, that the report in `e2ee` raises, and marks it as shown.
E2Prompt takePrompt(E2State &e2ee, PairState &pairing, const PromptContext &context);

} // namespace korvel
