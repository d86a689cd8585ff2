#pragma once

namespace korvel {

/// Opens the null device on each of the standard input, output and error that is closed. Otherwise the next socket
/// would get that number, and a log line would go into the middle of its conversation. The first thing a process does.
void openStandardStreams();

} // namespace korvel
