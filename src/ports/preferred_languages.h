#pragma once

#include <QStringList>

namespace korvel {

/// The user's preferred languages in order, such as "zh-Hans-CN"; empty if the system has no list.
QStringList preferredLanguages();

} // namespace korvel
