#pragma once

namespace korvel {

/// Opens the null device for each closed standard stream. Otherwise the next socket gets that descriptor, and log lines
/// go to its peer. Call first in a process.
void openStandardStreams();

} // namespace korvel
