#pragma once

#include <vector>

namespace korvel::native {

/// The processes of a user (libproc); empty on failure.
std::vector<int> processesOf(unsigned user);

struct Descriptor {
    int number;
    unsigned type;
};
/// The open descriptors of a process; empty if this user may not inspect it.
std::vector<Descriptor> descriptorsOf(int process);
extern const unsigned SOCKET_DESCRIPTOR; ///< Value of Descriptor::type.

/// The TCP properties of a socket.
struct TcpSocket {
    int kind;
    int state;
    unsigned versions; ///< IP versions, one bit each.
    unsigned port;     ///< Local port in network byte order.
    unsigned address;  ///< Local IPv4 address in network byte order.
};
TcpSocket tcpSocket(int process, int descriptor);
extern const int TCP_SOCKET;     ///< Value of TcpSocket::kind.
extern const int LISTENING;      ///< Value of TcpSocket::state.
extern const unsigned SPEAKS_V4; ///< Bit of TcpSocket::versions.

} // namespace korvel::native
