#pragma once

#include <vector>

namespace korvel::native {

/// The processes of a user (libproc); empty when the system does not say.
std::vector<int> processesOf(unsigned user);

struct Descriptor {
    int number;
    unsigned type;
};
/// The open descriptors of a process; empty for one that this user may not look into.
std::vector<Descriptor> descriptorsOf(int process);
extern const unsigned SOCKET_DESCRIPTOR; ///< Type of a descriptor.

/// A socket as far as it is one of TCP.
struct TcpSocket {
    int kind;
    int state;
    unsigned versions; ///< Of IP, one bit each.
    unsigned port;     ///< Its own, in network byte order, as is the address.
    unsigned address;  ///< Its own of IPv4.
};
TcpSocket tcpSocket(int process, int descriptor);
extern const int TCP_SOCKET;     ///< Kind of a socket.
extern const int LISTENING;      ///< State of a socket.
extern const unsigned SPEAKS_V4; ///< Bit of `versions`.

} // namespace korvel::native
