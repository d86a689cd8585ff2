#pragma once

#include <QStringList>

namespace korvel {

/// The user's ordered list of languages, such as "zh-Hans-CN"; empty when the system has none.
QStringList preferredLanguages();

} // namespace korvel
