#pragma once

#include "app/model/tray_state.h"
#include "base/result.h"

#include <QJsonObject>

namespace korvel {

/// Inputs of applyHealth() besides the response.
struct HealthContext {
    Instant now;
    bool bound = false;
    QString username; ///< From the agent configuration; used if the agent reports no account.
};

/// The follow-up actions once a response, or its absence, is applied.
struct HealthEffects {
    enum class Notice { None, SignedOut, AccountDeleted };
    Notice notice = Notice::None;
    bool reactToReport = false; ///< A new encryption report is in place.
    bool fetchPerms = false;    ///< The full permission list has to be fetched.
    bool checkJob = false;      ///< The job's state has to be looked up.
    bool operator==(const HealthEffects &) const = default;
};

/// The fields of a response that the tray reads, with bounded sizes.
QJsonObject boundedHealth(const QJsonObject &response);

/// The response, if it is a JSON object whose "ok" is true. Any other response counts as missing.
Result<QJsonObject> healthResponse(const Result<QJsonObject> &reply);

/// Applies a response to `state`. An error counts as no response.
HealthEffects applyHealth(TrayState &state, const Result<QJsonObject> &response, const HealthContext &context);

} // namespace korvel
