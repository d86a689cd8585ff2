#pragma once

#include <QString>

namespace korvel {

/// `text` on one line: tabs, line breaks and other control characters become blanks; what is over `maxLength`
/// characters is cut and ends in "…".
QString singleLine(const QString &text, qsizetype maxLength = 1000);

} // namespace korvel
