#pragma once

namespace korvel::sim {

/// A TCP socket bound to 127.0.0.1 and `port` (0: one that is free), or -1. It is marked so that several sockets of the
/// same user may be bound to the port at once: one that only holds the port beside the one that listens on it.
int boundLoopbackSocket(int port);

/// The port that a socket is bound to; 0 on failure.
int portOf(int socket);

/// Whether something on this machine accepts connections at that port of 127.0.0.1.
bool isPortTaken(int port);

} // namespace korvel::sim
