#pragma once

#include "base/result.h"

#include <QString>
#include <optional>

namespace korvel {

/// The sentence for the user about a failed request to a server; the same for all requests. Logs the error's
/// description if there is one. Without an error: the sentence for an unusable response of unknown cause.
QString netErrorText(const std::optional<Error> &error);

} // namespace korvel
