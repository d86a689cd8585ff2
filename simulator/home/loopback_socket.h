#pragma once

namespace korvel::sim {

/// A TCP socket bound to 127.0.0.1 and `port` (0: any free one); -1 on failure. Several sockets of the same user may be
/// bound to the port at once: one that reserves it, and one that listens.
int boundLoopbackSocket(int port);

/// The port of a bound socket; 0 on failure.
int portOf(int socket);

/// Whether a program accepts connections on that port of 127.0.0.1.
bool isPortTaken(int port);

} // namespace korvel::sim
