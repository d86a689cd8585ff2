#pragma once

#include "app/model/tray_state.h"
#include "base/result.h"

#include <QJsonObject>
#include <optional>

namespace korvel {

/// What applying a health answer needs to know besides the answer.
struct HealthContext {
    Instant now;
    bool bound = false;
    QString username; ///< From the agent configuration; stands in for an account that the agent does not name.
};

/// What has to follow once an answer, or its absence, is applied.
struct HealthEffects {
    enum class Notice { None, SignedOut, AccountDeleted };
    Notice notice = Notice::None;
    bool reactToReport = false; ///< A new encryption report is in place.
    bool fetchPerms = false;    ///< The full permission list is due.
    bool checkJob = false;      ///< Whether the job is loaded has to be looked up.
    bool operator==(const HealthEffects &) const = default;
};

/// The part of a response that the tray reads, within bounds.
QJsonObject boundedHealth(const QJsonObject &response);

/// What counts as an answer: a JSON object whose "ok" is true. Anything else is no answer.
Result<QJsonObject> healthAnswer(const Result<QJsonObject> &reply);

/// Writes an answer (none: no answer came) into `state`.
HealthEffects applyHealth(TrayState &state, const Result<QJsonObject> &answer, const HealthContext &context);

} // namespace korvel
