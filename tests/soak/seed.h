#pragma once

#include <QtGlobal>

namespace korvel::test {

/// The seed that ./soak was given; everything random in a trial follows from it.
quint32 soakSeed();

} // namespace korvel::test
