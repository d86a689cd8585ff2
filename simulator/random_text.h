#pragma once

#include <QString>

namespace korvel::sim {

// That many random bytes, as lower-case hexadecimal digits.
QString randomHex(int bytes);

// That many random decimal digits.
QString randomDigits(int count);

} // namespace korvel::sim
