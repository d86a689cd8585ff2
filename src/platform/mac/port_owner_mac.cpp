#include "ports/port_owner.h"

#include "platform/mac/native_sockets_mac.h"

#include <algorithm>
#include <arpa/inet.h>
#include <unistd.h>

namespace korvel {

namespace {

bool listensAt(const native::TcpSocket &socket, quint16 port) {
    return socket.kind == native::TCP_SOCKET && socket.state == native::LISTENING &&
           (socket.versions & native::SPEAKS_V4) != 0 && socket.port == htons(port) &&
           (socket.address == htonl(INADDR_LOOPBACK) || socket.address == htonl(INADDR_ANY));
}

bool listensAt(int process, quint16 port) {
    const auto descriptors = native::descriptorsOf(process);
    return std::any_of(descriptors.begin(), descriptors.end(), [&](const native::Descriptor &descriptor) {
        return descriptor.type == native::SOCKET_DESCRIPTOR &&
               listensAt(native::tcpSocket(process, descriptor.number), port);
    });
}

} // namespace

// macOS reveals only the sockets of the user's own processes; listeners of root and other users count as Nobody.
PortOwner portOwner(quint16 port) {
    const auto processes = native::processesOf(::getuid());
    if (processes.empty())
        return PortOwner::Unknown;
    const bool isOurs =
        std::any_of(processes.begin(), processes.end(), [port](int process) { return listensAt(process, port); });
    return isOurs ? PortOwner::Trusted : PortOwner::Nobody;
}

} // namespace korvel
