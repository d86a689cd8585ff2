#pragma once

#include <QtGlobal>

namespace korvel::test {

/// The seed that ./soak was given; everything random in a trial follows from it.
inline quint32 soakSeed() { return static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED")); }

} // namespace korvel::test
