#pragma once

namespace korvel::exchange {

/// Gives up what a run has no use for, as far as the system lets it: core dumps, privileges that other programs would
/// give, the look of debuggers into its memory, and inherited descriptors but the standard ones.
void giveUpRights();

} // namespace korvel::exchange
