#pragma once

namespace korvel::exchange {

/// Drops capabilities that a run does not need, as far as the system allows: core dumps, privileges gained by running
/// other programs, access by debuggers, and inherited descriptors except the standard streams.
void giveUpRights();

} // namespace korvel::exchange
