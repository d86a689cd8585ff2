#pragma once

#include "base/result.h"

#include <QString>
#include <optional>

namespace korvel {

/// One sentence for the user about a failed exchange with a server, the same wherever one fails. Logs the description,
/// where there is one.
/// Without an error: what is said when no usable answer came for no known reason.
QString netErrorText(const std::optional<Error> &error);

} // namespace korvel
